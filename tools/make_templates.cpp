// Run by the build: writes both blank templates to the given folder.

#include <cstdio>
#include <exception>
#include <filesystem>

#include "base/application.h"
#include "database/schema.h"
#include "database/templates.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: make_templates FOLDER\n", stderr);
    return 2;
  }
  try {
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    vrx::CreateTemplate(folder / vrx::kRecipeTemplateName, vrx::DatabaseKind::kRecipe);
    vrx::CreateTemplate(folder / vrx::kTransactionTemplateName, vrx::DatabaseKind::kTransaction);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_templates: %s\n", error.what());
    return 1;
  }
}
