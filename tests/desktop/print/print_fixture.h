#pragma once

#include <QComboBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTest>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "database/records.h"
#include "desktop/history/history_fixture.h"
#include "desktop/next_modal.h"
#include "support/boxes.h"
#include "support/printed_pages.h"
#include "support/program.h"

namespace vrx::testing {

// The window of the history, printed through its menu into a PDF file.
class PrintFixture : public HistoryFixture {
 protected:
  using Pages = std::vector<std::vector<std::string>>;

  // No printer of this machine is seen.
  PrintFixture() { qputenv("CUPS_SERVER", "/nowhere"); }

  // A recipe of that type with so many lines.
  void AddRecipe(int id, const std::string& type, int lines) {
    SQLite::Database database = OpenDatabase(Recipes(), Access::kWrite);
    RecipeRecord recipe = ReadRecipe(database, id);
    recipe.batch_type = type;
    recipe.adjust_batch_index = "20";
    WriteRecipe(database, recipe);
    for (int line = 1; line <= lines; ++line) {
      RecipeLineRecord added{.recipe_id = std::to_string(id),
                             .ingredient = std::to_string(line),
                             .target = std::to_string(line * 100),
                             .ration_percent = "33.333",
                             .dry_matter_percent = "50",
                             .dry_matter = std::to_string(line * 200),
                             .batch_target = std::to_string(line * 210),
                             .sequence = line};
      WriteRecipeLine(database, added);
    }
  }

  void InPrintSetup(const std::function<void(QWidget&)>& act) {
    const NextModal next(act);
    Choose(u"mnuFilePrintSetup"_qs);
    EXPECT_TRUE(next.Seen());
  }
  static void Press(QWidget& dialog, QDialogButtonBox::StandardButton button) {
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
  }
  void ChoosePdf() {
    InPrintSetup([](QWidget& dialog) {
      auto* const printers = dialog.findChild<QComboBox*>(u"lstPrinter"_qs);
      printers->setCurrentIndex(printers->findText(u"PDF file"_qs));
      Press(dialog, QDialogButtonBox::Ok);
    });
  }

  // The pages of the current tab, in a PDF file; none if nothing was printed.
  Pages Print() {
    std::filesystem::remove(pdf_);
    ChoosePdf();
    chooser_.Choose(pdf_);
    Choose(u"mnuFilePrint"_qs);
    return std::filesystem::exists(pdf_) ? LinesOf(pdf_) : Pages();
  }
  Pages PrintTab(int tab) {
    GoToTab(tab);
    return Print();
  }

  // What the command line tool prints of the same, but for today's date.
  Pages Specified(const std::vector<std::string>& words) {
    const std::filesystem::path pdf = folder_ / "specified.pdf";
    std::vector<std::string> args{"--data-dir", (folder_ / "ctl").string(), "print"};
    args.insert(args.end(), words.begin(), words.end());
    args.insert(args.end(), {"--pdf", pdf.string()});
    Program program(std::string(VRX_BIN_DIR) + "/vrx2260ctl", args, folder_.Path().string());
    EXPECT_EQ(program.Wait(), 0) << program.Err();
    return WithoutDate(LinesOf(pdf));
  }
  static Pages WithoutDate(Pages pages) {
    for (auto& lines : pages) {
      lines.back() = lines.back().substr(lines.back().find(' '));
    }
    return pages;
  }

  void ExpectRefused(const std::string& text, Icon icon = Icon::kWarning) {
    EXPECT_THAT(OnlyBox(operator_.boxes), IsBox(icon, "Print Error", text));
    EXPECT_FALSE(operator_.busy);
    operator_.boxes.clear();
  }

  std::filesystem::path pdf_ = folder_ / "report.pdf";
};

}  // namespace vrx::testing
