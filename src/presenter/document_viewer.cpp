#include "presenter/document_viewer.h"

#include "base/text.h"

namespace vrx {
namespace {

constexpr int kLargestFailure = 32;

std::string FailureText(int code, const std::string& document) {
  switch (code) {
    case 0:
      return "Error, system out of memory or resources.";
    case 2:
      return "Error, '" + document + "' file not \r\n     found in the application directory.";
    case 3:
      return "Error, path does not exist.";
    case 11:
      return "Error, associated executable is incorrect for this file-type.";
    case 31:
      return "Error, no association exists.";
    default:
      return "Error, " + std::to_string(code);
  }
}

std::string_view SecondMessage(int code) {
  switch (code) {
    case 2:
      return "\r\n     You should run the install program again to \r\n     load the document.";
    case 31:
      return "\r\n     You should establish an 'association' for the files with extensions that "
             "will define the application that you want to use open this type of file. This is "
             "done through Windows. ";
    default:
      return {};
  }
}

}  // namespace

std::string FindDocumentViewer(const SystemInfo& system, const std::string& document,
                               std::string& message) {
  std::string viewer;
  const int code = system.FindExecutable(document, system.ProgramDirectory(), viewer);
  if (code > kLargestFailure) {
    message.clear();
    return TrimNulls(viewer);
  }
  message = SecondMessage(code);
  return FailureText(code, document);
}

bool HasDocumentViewer(const SystemInfo& system, const std::string& document) {
  std::string viewer;
  return system.FindExecutable(document, system.ProgramDirectory(), viewer) > kLargestFailure;
}

}  // namespace vrx
