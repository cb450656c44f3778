#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "link/krmcomm.h"
#include "presenter/create_database.h"
#include "presenter/data_files.h"
#include "presenter/direct_connection.h"
#include "presenter/services.h"
#include "presenter/transfer_state.h"

namespace vrx {

// Sends a recipe file to the module. References must outlive the object.
class Download {
 public:
  Download(KRMCOMM& krm, EventPump& pump, Operator& op, const PrivateINI& settings);

  // Checks that the module is there, clears it and sends the bytes, which takes at least 4600 ms.
  // The operator follows it in the status line. False when a step failed: the line tells which, in
  // red, and KRM_FailureCause holds what lies behind. The module is then left cleared or half
  // filled, unless it was the check that failed. The caller has taken the line.
  bool DownloadToModule(std::string_view text);

  LineGuard& Guard() { return krm_.Guard(); }

 private:
  bool Fail(std::string_view words);
  bool ClearAndSend(std::string_view text);

  KRMCOMM& krm_;
  EventPump& pump_;
  Operator& op_;
  const PrivateINI& settings_;
};

// What the download asks of the main window.
class RecipeDownloadHost {
 public:
  virtual ~RecipeDownloadHost() = default;

  // The recipe database that is open; an empty path when none is.
  virtual CurrentDatabase RecipeDatabase() const = 0;

  // The open command of the File menu, its dialog and messages included.
  virtual void OpenRecipeDatabase() = 0;

  // A download has stored recomputed lines and head counts: whoever shows them reads them anew. The
  // recipe editor then stands on the highest recipe in use, or where it stood when that is 0.
  virtual void RecipesStored(int highest_in_use) = 0;

  // Gives the control of that name the focus if it is visible and enabled.
  virtual void FocusControl(std::string_view name) = 0;

  // What the tab holds has changed: time to show it.
  virtual void TransferChanged() = 0;

  // A file of rescued data was chosen to be opened. Without a list of data files it is ignored.
  virtual void OpenRescueFile(const std::filesystem::path& /*path*/) {}
};

// The download side of the Data Transfer tab: from a recipe database or a backup to the module, or
// into the memory that an indicator on the cable fetches it from.
class DownloadPresenter {
 public:
  DownloadPresenter(Services& services, TransferState& transfer, ReportFile& files,
                    Download& download, DirectConnection& direct, RecipeDownloadHost& host)
      : services_(services),
        transfer_(transfer),
        files_(files),
        download_(download),
        direct_(direct),
        host_(host) {}

  // The clicks of the buttons of those names. What goes wrong is reported to the operator. While
  // the line is in use, the buttons that would use it do nothing.
  void DownloadRecipeToKRM();

  // True when the text has left the port, or stands in memory.
  bool DownloadRecipeDB();
  bool DownloadRecipeBU();

  // True when a file is open and, in the direct connection, stands in memory.
  bool OpenRecipeDB();
  bool OpenRecipeBU();

 private:
  void Refuse(std::string_view title, std::string_view text, std::string_view focus);
  bool ConfirmOverwrite(const std::string& source);
  void ShowInWindow(std::string text);
  void AppendToWindow(std::string_view line);
  bool BuildFromDatabase(const CurrentDatabase& database);
  bool LoadBackup(const std::string& path);
  LineGuard::Claim TakeLine();
  bool Send();

  Services& services_;
  TransferState& transfer_;
  ReportFile& files_;
  Download& download_;
  DirectConnection& direct_;
  RecipeDownloadHost& host_;
};

}  // namespace vrx
