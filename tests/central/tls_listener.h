#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vrx::testing {

// Lets the tests' server also listen on a TCP port of this machine, encrypted, until the object
// goes. The address is not one of the names of this machine that the program knows, so that it is
// another host to it. The server's name is central.example.
class TlsListener {
 public:
  // What the server shows to its clients.
  enum class Certificate { kGood, kExpired, kOtherName, kSelfSigned, kOtherAuthority, kNone };

  // `rules` are lines of pg_hba.conf, before those that let everyone in.
  explicit TlsListener(const std::vector<std::string>& rules);
  ~TlsListener();
  TlsListener(const TlsListener&) = delete;
  TlsListener& operator=(const TlsListener&) = delete;

  // For connections made from now on. Without a certificate nothing is encrypted.
  void Show(Certificate certificate);

  // Without sslmode; knows the authority that has signed the good certificate.
  [[nodiscard]] std::string Connection(const std::string& database, const std::string& login) const;

 private:
  void MakeCertificates() const;

  std::filesystem::path folder_;
  std::string address_;
};

}  // namespace vrx::testing
