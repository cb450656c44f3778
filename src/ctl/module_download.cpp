#include "ctl/module_download.h"

#include <string_view>
#include <utility>

#include "base/files.h"
#include "ctl/command.h"
#include "ctl/recipe_source.h"
#include "ctl/scripted_file_choice.h"
#include "ctl/session.h"
#include "link/krmcomm.h"
#include "presenter/data_files.h"
#include "presenter/direct_connection.h"
#include "presenter/download.h"
#include "presenter/recipe_download.h"
#include "presenter/transfer_state.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

// The Data Transfer tab without its window, in the module connection.
class DownloadRoad : public RecipeDownloadHost {
 public:
  DownloadRoad(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings)
      : files_(session.Op(), chooser_, settings, transfer_,
               [&krm](int file) { return krm.GL_KRM_FileAttributes(file); }),
        download_(krm, pump, session.Op(), settings),
        direct_(krm, transfer_, pump, session.Op(), settings),
        tab_({.op = session.Op(),
              .settings = settings,
              .calendar = session.Context().calendar,
              .identity = session.Identity(),
              .transfer = transfer_,
              .files = files_,
              .download = download_,
              .direct = direct_,
              .host = *this}) {}

  bool SendDatabase(const fs::path& path) {
    database_ = {.path = path, .name = FileTitle(path), .unit = {}};
    return tab_.DownloadRecipeDB();
  }
  bool SendBackup(const fs::path& path) {
    chooser_.Choose(path);
    return tab_.OpenRecipeBU() && tab_.DownloadRecipeBU();
  }

  CurrentDatabase RecipeDatabase() const override { return database_; }
  // Without a window there is nothing to open, to show or to give the focus to.
  void OpenRecipeDatabase() override {}
  void RecipesStored(int /*highest_in_use*/) override {}
  void FocusControl(std::string_view /*name*/) override {}
  void TransferChanged() override {}

 private:
  CurrentDatabase database_;
  ScriptedFileChoice chooser_;
  DataTransfer transfer_;
  ReportFile files_;
  Download download_;
  DirectConnection direct_;
  RecipeDownloadSession tab_;
};

}  // namespace

int DownloadModule(Session& session, KRMCOMM& krm, EventPump& pump, const PrivateINI& settings,
                   const fs::path& file) {
  const bool backup = IsRecipeBackup(file);
  if (!backup && !session.IsUserDatabase(file, DatabaseKind::kRecipe)) {
    return kFailed;
  }
  DownloadRoad road(session, krm, pump, settings);
  const bool sent = backup ? road.SendBackup(file) : road.SendDatabase(file);
  if (session.Op().StatusIsError()) {
    session.Op().TellCause(krm.KRM_FailureCause());
  }
  return sent ? kDone : kFailed;
}

}  // namespace vrx
