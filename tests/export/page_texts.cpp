#include "export/page_texts.h"

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

namespace vrx::testing {
namespace {

struct Total {
  std::string_view attribute;
  std::string_view field;
  std::string_view label;
};

constexpr std::array<Total, 3> kTotals{{{"Batch_Weight", "ActualBatch", "Batch"},
                                        {"Feed_Weight", "ActualFeed", "Feed"},
                                        {"Target_Weight", "Target", "Target"}}};

struct Freed {
  void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, Freed>;

Document OrFail(xmlDocPtr document) {
  if (document == nullptr) {
    throw std::runtime_error("the document does not parse");
  }
  return Document(document);
}

std::string Taken(xmlChar* text) {
  const std::unique_ptr<xmlChar, void (*)(void*)> owned(text, xmlFree);
  return owned ? reinterpret_cast<const char*>(owned.get()) : "";
}

std::string TextOf(xmlNodePtr node) { return Taken(xmlNodeGetContent(node)); }

std::string_view ElementOf(xmlNodePtr node) { return reinterpret_cast<const char*>(node->name); }

std::string Attribute(xmlNodePtr node, std::string_view name) {
  return Taken(xmlGetProp(node, reinterpret_cast<const xmlChar*>(std::string(name).c_str())));
}

bool Has(xmlNodePtr node, std::string_view name) {
  return xmlHasProp(node, reinterpret_cast<const xmlChar*>(std::string(name).c_str())) != nullptr;
}

std::vector<xmlNodePtr> ElementsOf(xmlNodePtr node) {
  std::vector<xmlNodePtr> elements;
  for (xmlNodePtr child = xmlFirstElementChild(node); child != nullptr;
       child = xmlNextElementSibling(child)) {
    elements.push_back(child);
  }
  return elements;
}

std::string WithoutSpareBlanks(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character != ' ') {
      result += character;
    } else if (!result.empty() && result.back() != ' ') {
      result += ' ';
    }
  }
  if (!result.empty() && result.back() == ' ') {
    result.pop_back();
  }
  return result;
}

void CollectCells(xmlNodePtr node, std::vector<std::string>& texts) {
  for (xmlNodePtr child : ElementsOf(node)) {
    if (ElementOf(child) != "tr") {
      CollectCells(child, texts);
      continue;
    }
    for (xmlNodePtr cell : ElementsOf(child)) {
      if (!Has(child, "class")) {
        texts.push_back(TextOf(cell));
      } else if (std::string text = WithoutSpareBlanks(TextOf(cell)); !text.empty()) {
        texts.push_back(std::move(text));
      }
    }
  }
}

xmlNodePtr FirstRecord(xmlNodePtr node) {
  for (xmlNodePtr child : ElementsOf(node)) {
    if (ElementOf(child) == "Record") {
      return child;
    }
    if (xmlNodePtr record = FirstRecord(child); record != nullptr) {
      return record;
    }
  }
  return nullptr;
}

class ExpectedTexts {
 public:
  std::vector<std::string> Of(xmlNodePtr root) {
    if (xmlNodePtr record = FirstRecord(root); record != nullptr) {
      for (xmlNodePtr field : ElementsOf(record)) {
        fields_.emplace_back(ElementOf(field));
      }
    }
    const std::vector<xmlNodePtr> columns = ElementsOf(ElementsOf(root).front());
    for (std::size_t at = fields_.empty() ? columns.size() : columns.size() - fields_.size();
         at < columns.size(); ++at) {
      texts_.push_back(TextOf(columns[at]));
    }
    AddBelow(root);
    return std::move(texts_);
  }

 private:
  void AddBelow(xmlNodePtr node) {
    bool innermost = true;
    for (xmlNodePtr child : ElementsOf(node)) {
      if (ElementOf(child) == "Record") {
        for (xmlNodePtr field : ElementsOf(child)) {
          texts_.push_back(TextOf(field));
        }
      } else if (Has(child, "Value")) {
        innermost = false;
        AddHeading(child);
        AddBelow(child);
      }
    }
    if (innermost) {
      AddTotals(node);
    }
  }

  void AddHeading(xmlNodePtr level) {
    const std::string_view element = ElementOf(level);
    const std::string label(element == "Type" ? "" : element == "User_Id" ? "User" : element);
    const std::string value = Attribute(level, "Value");
    texts_.push_back(WithoutSpareBlanks(label + " " + (value.empty() ? "(no name)" : value)));
  }

  bool IsColumn(std::string_view field) const {
    return std::find(fields_.begin(), fields_.end(), field) != fields_.end();
  }

  void AddTotals(xmlNodePtr level) {
    std::string others;
    for (const Total& total : kTotals) {
      if (Has(level, total.attribute) && !IsColumn(total.field)) {
        others += " " + std::string(total.label) + " " + Attribute(level, total.attribute);
      }
    }
    if (!others.empty()) {
      texts_.push_back(WithoutSpareBlanks("Total:" + others));
    }
    bool first = true;
    for (const std::string& field : fields_) {
      const auto* const total = std::find_if(kTotals.begin(), kTotals.end(), [&](const Total& t) {
        return t.field == field && Has(level, t.attribute);
      });
      if (total == kTotals.end()) {
        continue;
      }
      if (std::exchange(first, false) && field != fields_.front()) {
        texts_.emplace_back("Total:");
      }
      texts_.push_back(
          WithoutSpareBlanks(std::string(total->label) + " " + Attribute(level, total->attribute)));
    }
  }

  std::vector<std::string> fields_;
  std::vector<std::string> texts_;
};

}  // namespace

std::vector<std::string> TextsOfPage(std::string_view html) {
  const Document page = OrFail(htmlReadMemory(html.data(), static_cast<int>(html.size()), "page",
                                              nullptr, HTML_PARSE_NOERROR));
  std::vector<std::string> texts;
  CollectCells(xmlDocGetRootElement(page.get()), texts);
  return texts;
}

std::vector<std::string> TextsExpectedOf(std::string_view xml) {
  const Document document = OrFail(
      xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "xml", nullptr, XML_PARSE_NONET));
  return ExpectedTexts().Of(xmlDocGetRootElement(document.get()));
}

}  // namespace vrx::testing
