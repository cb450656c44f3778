#include "support/html_tables.h"

#include <QByteArray>
#include <QXmlStreamReader>
#include <algorithm>
#include <cstddef>

#include <gtest/gtest.h>

namespace vrx::testing {

HtmlRow HtmlTable::Column(const std::string& caption) const {
  HtmlRow texts;
  const auto found = std::ranges::find(rows.at(0), caption);
  EXPECT_NE(found, rows[0].end()) << caption;
  const auto column = static_cast<std::size_t>(found - rows[0].begin());
  for (std::size_t row = 1; row < rows.size() && column < rows[0].size(); ++row) {
    texts.push_back(rows[row].at(column));
  }
  return texts;
}

std::vector<HtmlTable> HtmlTables(const std::string& html) {
  std::vector<HtmlTable> tables;
  std::string heading;
  QXmlStreamReader reader(QByteArray::fromStdString(html));
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) {
      continue;
    }
    if (reader.name() == QLatin1String("h2")) {
      heading = reader.readElementText().toStdString();
    } else if (reader.name() == QLatin1String("table")) {
      tables.push_back({heading, {}});
    } else if (reader.name() == QLatin1String("tr")) {
      tables.back().rows.emplace_back();
    } else if (reader.name() == QLatin1String("th") || reader.name() == QLatin1String("td")) {
      tables.back().rows.back().push_back(reader.readElementText().toStdString());
    }
  }
  EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString() << " in line "
                                  << reader.lineNumber();
  return tables;
}

HtmlTable HtmlTableBelow(const std::string& html, const std::string& heading) {
  for (HtmlTable& table : HtmlTables(html)) {
    if (table.heading == heading) {
      return table;
    }
  }
  ADD_FAILURE() << "no table below " << heading;
  return {heading, {{}}};
}

}  // namespace vrx::testing
