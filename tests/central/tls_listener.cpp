#include "central/tls_listener.h"

#include <fstream>
#include <random>
#include <stdexcept>

#include "support/central_server.h"
#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// Runs in the folder of the certificates as the user of the server, who must own the keys.
constexpr const char* kMakeCertificates = R"(set -e
cd "$1"
key='-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes'
for authority in good_authority other_authority; do
  openssl req -x509 $key -keyout $authority.key -out $authority.crt -subj "/CN=$authority" -days 2
done
sign() { # NAME HOST AUTHORITY DAYS
  openssl req $key -keyout $1.key -out $1.csr -subj "/CN=$2"
  echo "subjectAltName=DNS:$2" >$1.names
  openssl x509 -req -in $1.csr -CA $3.crt -CAkey $3.key -CAcreateserial -days $4 \
    -extfile $1.names -out $1.crt
}
sign good central.example good_authority 2
sign expired central.example good_authority -1
sign other_name elsewhere.example good_authority 2
sign other_authority_signed central.example other_authority 2
openssl req -x509 $key -keyout self_signed.key -out self_signed.crt -subj "/CN=central.example" \
  -addext subjectAltName=DNS:central.example -days 2
chmod 600 *.key
)";

// A loopback address: two test programs at once do not use the same port.
std::string RandomAddress() {
  std::random_device random;
  const auto part = [&] { return std::to_string(random() % 250 + 2); };
  return "127." + part() + "." + part() + "." + part();
}

std::string NameOf(TlsListener::Certificate certificate) {
  using enum TlsListener::Certificate;
  switch (certificate) {
    case kExpired:
      return "expired";
    case kOtherName:
      return "other_name";
    case kSelfSigned:
      return "self_signed";
    case kOtherAuthority:
      return "other_authority_signed";
    default:
      return "good";
  }
}

}  // namespace

TlsListener::TlsListener(const std::vector<std::string>& rules)
    : folder_(CentralServer::Get().MakeFolder("tls")), address_(RandomAddress()) {
  MakeCertificates();
  std::string text = "local all all trust\n";
  for (const std::string& rule : rules) {
    text += rule + "\n";
  }
  std::ofstream(folder_ / "hba.conf") << text << "host all all 127.0.0.0/8 trust\n";
  Show(Certificate::kGood);
}

TlsListener::~TlsListener() {
  CentralServer::Get().Restart({});
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void TlsListener::MakeCertificates() const {
  const TempFolder output;
  Program make("/bin/sh", {"-c", kMakeCertificates, "sh", folder_.string()}, output.Path().string(),
               Program::User::kNobody);
  if (make.Wait() != 0) {
    throw std::runtime_error("the tests of encrypted connections need the package openssl: " +
                             make.Err());
  }
}

void TlsListener::Show(Certificate certificate) {
  std::vector<std::string> settings{"listen_addresses=" + address_,
                                    "hba_file=" + (folder_ / "hba.conf").string()};
  if (certificate != Certificate::kNone) {
    const fs::path name = folder_ / NameOf(certificate);
    settings.insert(settings.end(), {"ssl=on", "ssl_cert_file=" + name.string() + ".crt",
                                     "ssl_key_file=" + name.string() + ".key"});
  }
  CentralServer::Get().Restart(settings);
}

std::string TlsListener::Connection(const std::string& database, const std::string& login) const {
  return "host=central.example hostaddr=" + address_ + " dbname=" + database + " user=" + login +
         " sslrootcert='" + (folder_ / "good_authority.crt").string() + "'";
}

}  // namespace vrx::testing
