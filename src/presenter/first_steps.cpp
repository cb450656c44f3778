#include "presenter/first_steps.h"

#include <string>
#include <system_error>

#include "base/error.h"
#include "base/files.h"
#include "base/translation.h"
#include "database/identity.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

constexpr std::array<FirstStepRow, kFirstStepCount> kFirstSteps{{
    {FirstStep::kMakeRecipes, "cmdFirstMakeRecipeDB", TrMark("Make a Recipe Database..."),
     TrMark("It holds your ingredients, recipes and pens.")},
    {FirstStep::kMakeTransactions, "cmdFirstMakeTransactionDB",
     TrMark("Make a Transaction Database..."),
     TrMark("It takes the records of every batch and feeding.")},
    {FirstStep::kOpen, "cmdFirstOpen", TrMark("Open a File..."),
     TrMark("Opens a database or another file that you have already.")},
    {FirstStep::kSampleSite, "cmdFirstSampleSite", TrMark("Try the Sample Site"),
     TrMark("Copies a feedlot with a month of records, to look around.")},
    {FirstStep::kSerialPort, "cmdFirstSerialPort", TrMark("Set the Serial Port..."),
     TrMark("Chooses the port of the data module's cable.")},
}};

constexpr std::string_view kPortKey = "FirstStepSerialPort";
constexpr std::array kSampleKinds{DatabaseKind::kRecipe, DatabaseKind::kTransaction};
constexpr int kMostCopies = 9999;  // a name has eight characters

fs::path NameOfSample(DatabaseKind kind, int number) {
  return "SITE" + (number == 1 ? "" : std::to_string(number)) + "." +
         std::string(TextsOf(kind).extension);
}

void ReportSampleFailure(Operator& op, const std::string& cause) {
  op.ShowMessage({.icon = Icon::kCritical,
                  .title = Tr("Sample Site Error"),
                  .text = Tr("The sample site was not copied.") + "\r\n\r\n" + cause});
}

std::string WhyNotCopied(const fs::path& source, const fs::path& target,
                         const std::error_code& why) {
  return source.string() + " to " + target.string() + ": " + why.message();
}

}  // namespace

const std::array<FirstStepRow, kFirstStepCount>& FirstStepRows() { return kFirstSteps; }

bool FirstSteps::Wanted() const {
  return !databases_.IsOpen(DatabaseKind::kRecipe) ||
         !databases_.IsOpen(DatabaseKind::kTransaction);
}

bool FirstSteps::Done(FirstStep step) const {
  const bool recipes = databases_.IsOpen(DatabaseKind::kRecipe);
  const bool transactions = databases_.IsOpen(DatabaseKind::kTransaction);
  switch (step) {
    case FirstStep::kMakeRecipes:
      return recipes;
    case FirstStep::kMakeTransactions:
      return transactions;
    case FirstStep::kOpen:
      return recipes || transactions;
    case FirstStep::kSampleSite:
      return (recipes && databases_.Bound(DatabaseKind::kRecipe).path == copies_.front()) ||
             (transactions && databases_.Bound(DatabaseKind::kTransaction).path == copies_.back());
    case FirstStep::kSerialPort:
      return store_.GetSetting(kPortKey) == services_.settings.SerialPort();
  }
  return false;
}

void FirstSteps::TrySampleSite() {
  const std::array<fs::path, 2> copies = CopySampleSite();
  if (copies.front().empty()) {
    return;
  }
  copies_ = copies;
  databases_.OpenNamed(DatabaseKind::kRecipe, copies.front());
  if (!services_.pump.Closing()) {
    databases_.OpenNamed(DatabaseKind::kTransaction, copies.back());
  }
}

// Another program may take a name at any time, so each copy only succeeds under a free one.
std::array<fs::path, 2> FirstSteps::CopySampleSite() {
  const fs::path from = fs::path(services_.system.ProgramDirectory()) / "sample_site";
  for (int number = 1; number <= kMostCopies; ++number) {
    std::array<fs::path, 2> copies;
    std::error_code why;
    for (std::size_t i = 0; i < copies.size() && !why; ++i) {
      const fs::path source = from / NameOfSample(kSampleKinds.at(i), 1);
      copies.at(i) = services_.folder.DefaultAppPath() / NameOfSample(kSampleKinds.at(i), number);
      if (CopyFileNoOverwrite(source, copies.at(i), &why)) {
        continue;
      }
      std::error_code ignored;  // the first failure is reported
      if (i > 0) {
        fs::remove(copies.front(), ignored);
      }
      if (why != std::errc::file_exists) {
        ReportSampleFailure(services_.op, WhyNotCopied(source, copies.at(i), why));
        return {};
      }
    }
    if (!why) {
      return copies;
    }
  }
  ReportSampleFailure(services_.op, Tr("There is no free name for it in %1.",
                                       {services_.folder.DefaultAppPath().string()}));
  return {};
}

// A setting that cannot be written only loses its tick.
void FirstSteps::PortChosen() {
  try {
    store_.SaveSetting(kPortKey, services_.settings.SerialPort());
  } catch (const Error&) {
    return;
  }
}

bool FirstSteps::OpensAll() const {
  return services_.settings.AutoloadRecipeDBOn() && services_.settings.AutoloadTransDBOn();
}

bool FirstSteps::OpensSome() const {
  return services_.settings.AutoloadRecipeDBOn() || services_.settings.AutoloadTransDBOn();
}

void FirstSteps::OpenAtStart(bool on) {
  services_.settings.SetAutoloadRecipeDBOn(on);
  services_.settings.SetAutoloadTransDBOn(on);
}

}  // namespace vrx
