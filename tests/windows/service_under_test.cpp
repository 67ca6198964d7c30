#include "tests/windows/service_under_test.h"

#include <windows.h>

#include <wincrypt.h>  // after <windows.h>, whose types it uses

#include <cstdlib>
#include <vector>

#include "base/wide_text.h"
#include "tests/temp_folder.h"

namespace orvane::testing {

namespace {

namespace fs = std::filesystem;

std::string Environment(const char* name, std::string& missing) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') {
    missing += std::string(missing.empty() ? "" : ", ") + name;
    return {};
  }
  return value;
}

}  // namespace

const ServiceUnderTest& Service() {
  static const ServiceUnderTest service = [] {
    ServiceUnderTest found;
    found.url = FromUtf8(Environment("ORVANE_TEST_SERVICE", found.missing));
    found.data = Environment("ORVANE_TEST_SERVICE_DATA", found.missing);
    found.tlsUrl = FromUtf8(Environment("ORVANE_TEST_TLS_SERVICE", found.missing));
    found.certificate = Environment("ORVANE_TEST_TLS_CERT", found.missing);
    found.untrustedUrl = FromUtf8(Environment("ORVANE_TEST_UNTRUSTED_SERVICE", found.missing));
    return found;
  }();
  return service;
}

bool TrustCertificate(const fs::path& pemFile) {
  std::string pem = FileContents(pemFile);
  DWORD size = 0;
  if (!CryptStringToBinaryA(pem.c_str(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                            nullptr, &size, nullptr, nullptr)) {
    return false;
  }
  std::vector<BYTE> der(size);
  if (!CryptStringToBinaryA(pem.c_str(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                            der.data(), &size, nullptr, nullptr)) {
    return false;
  }
  HCERTSTORE store =
      CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
  if (store == nullptr) return false;
  BOOL added = CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, der.data(), size,
                                                CERT_STORE_ADD_REPLACE_EXISTING, nullptr);
  CertCloseStore(store, 0);
  return added != FALSE;
}

bool RunningUnderWine() {
  HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

std::optional<fs::path> StoredJob(const fs::path& data, const std::string& encodedJobName) {
  std::error_code error;
  for (const auto& job : fs::directory_iterator(data / "jobs", error)) {
    if (FileContents(job.path() / "head.txt").find("\r\nX-Job-Name: " + encodedJobName + "\r\n") !=
        std::string::npos) {
      return job.path();
    }
  }
  return std::nullopt;
}

}  // namespace orvane::testing
