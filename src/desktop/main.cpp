#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QMainWindow>
#include <memory>
#include <optional>

#include "desktop/caption_pass.h"
#include "desktop/desktop_program.h"
#include "desktop/form_parts.h"

namespace vrx {
namespace {

// The bare main window: no database can be opened in it.
class BareMainForm : public QMainWindow, public MainForm {
 public:
  explicit BareMainForm(const DesktopContext& context) : exit_(context.exit) {
    setObjectName(QStringLiteral("VRXMAIN"));
    SetTag(*this, kMainTitleCaption);
    ApplyCaptionTable(*this);
    resize(kOpeningSize);
  }

  void Show() override { show(); }
  void CloseSerialPort() override {}
  void UnloadSetup() override {}
  std::optional<WindowPlace> Place() const override { return std::nullopt; }
  RecentFile Recent(DatabaseKind /*kind*/) const override { return {}; }
  void CloseRecipeDatabase() override {}
  void CloseTransactionDatabase() override {}
  void ReleaseDataControls() override {}
  void ClearIngredientDropDown() override {}
  void UnloadOpenForms() override {}
  void Unload() override { hide(); }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    exit_.CloseBox();
  }

 private:
  static constexpr int kMainTitleCaption = 1063;
  static constexpr QSize kOpeningSize{1024, 720};

  ExitRoads& exit_;
};

std::unique_ptr<MainForm> MakeBareMainForm(const DesktopContext& context) {
  return std::make_unique<BareMainForm>(context);
}

}  // namespace
}  // namespace vrx

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setApplicationVersion(vrx::VersionText());
  QApplication::setDesktopFileName(QStringLiteral("vrx2260"));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(QIcon(vrx::kLogoPath));
  return vrx::DesktopProgram(vrx::MakeBareMainForm).Run();
}
