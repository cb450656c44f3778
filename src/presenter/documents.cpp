#include "presenter/documents.h"

#include <filesystem>
#include <string>

#include "base/files.h"
#include "presenter/document_viewer.h"

namespace vrx {
namespace {

constexpr int kLargestFailure = 32;

}  // namespace

constexpr HelpDocument kUsersManual = {
    .file = "VRX2260_U.PDF",
    .kind = "the User's Manual",
    .no_viewer =
        "There is no Adobe Acrobat reader on the system for reading .PDF files.\r\n\r\n"
        "You can download a reader (free of charge) from the manufacturers web site at: "
        "https://okular.kde.org"};

constexpr HelpDocument kReadme = {
    .file = "Readme.TXT",
    .kind = "the Readme file",
    .no_viewer = "There is no associated application on the system for reading .TXT files."};

void ShowDocument(const HelpDocument& document, const SystemInfo& system, OperatingSystem& os,
                  Operator& op) {
  const std::string file(document.file);
  const std::filesystem::path path = std::filesystem::path(system.ProgramDirectory()) / file;
  if (!FileExists(path)) {
    ReportMissingDocument(file, op);
    return;
  }
  if (!HasDocumentViewer(system, file)) {
    op.ShowMessage({.icon = Icon::kWarning,
                    .title = "Error: No file viewer",
                    .text = "Cannot display " + std::string(document.kind) + ": " + file + "\r\n" +
                            std::string(document.no_viewer)});
    return;
  }
  if (os.OpenDocument(path) <= kLargestFailure) {
    op.ShowMessage({.icon = Icon::kWarning,
                    .title = "Error: File viewer",
                    .text = "Document viewer associated with this file failed.\r\n"
                            "Check the Windows association setting and that the viewer application "
                            "file actually exists."});
  }
}

void ReportMissingDocument(std::string_view file, Operator& op) {
  op.ShowMessage({.icon = Icon::kWarning,
                  .title = "Error: File not found",
                  .text = std::string(file) +
                          " could not be found.\r\n"
                          "It must be located in the VRX-2260 application directory for automatic "
                          "viewing. You should run the install program again to load the "
                          "document."});
}

}  // namespace vrx
