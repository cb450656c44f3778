#include <QCoreApplication>
#include <cstdlib>
#include <iostream>
#include <string>

#include "adapters/document_opener.h"
#include "adapters/linux_machine.h"

// document_opener_process WHAT DIRECTORY DOCUMENT prints the code of a document, and below it
//   call   the program and the arguments that open it
//   find   the viewer, as LinuxSystemInfo names it
//   open   nothing: LinuxOperatingSystem opens it
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  if (argc != 4) {
    return EXIT_FAILURE;
  }
  const std::string what = argv[1];
  const std::string path = std::string(argv[2]) + "/" + argv[3];
  if (what == "call") {
    const auto [code, call] = vrx::FindDocumentOpener(QString::fromStdString(path));
    std::cout << code << "\n" << call.program.toStdString() << "\n";
    for (const QString& argument : call.arguments) {
      std::cout << argument.toStdString() << "\n";
    }
  } else if (what == "find") {
    std::string viewer = "before";
    std::cout << vrx::LinuxSystemInfo().FindExecutable(argv[3], argv[2], viewer) << "\n";
    std::cout << viewer << "\n";
  } else {
    std::cout << vrx::LinuxOperatingSystem().OpenDocument(path) << "\n";
  }
  return EXIT_SUCCESS;
}
