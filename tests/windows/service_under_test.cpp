#include "tests/windows/service_under_test.h"

#include <windows.h>

#include <wincrypt.h>  // after <windows.h>, whose types it uses

#include <cstdio>
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

namespace {

std::vector<BYTE> DerFromPem(const fs::path& pemFile) {
  std::string pem = FileContents(pemFile);
  DWORD size = 0;
  if (!CryptStringToBinaryA(pem.c_str(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                            nullptr, &size, nullptr, nullptr)) {
    return {};
  }
  std::vector<BYTE> der(size);
  if (!CryptStringToBinaryA(pem.c_str(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                            der.data(), &size, nullptr, nullptr)) {
    return {};
  }
  der.resize(size);
  return der;
}

std::string Hex(DWORD value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%lx", static_cast<unsigned long>(value));
  return text;
}

std::string UtcText(const FILETIME& time) {
  SYSTEMTIME utc{};
  FileTimeToSystemTime(&time, &utc);
  char text[32];
  std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u", utc.wYear, utc.wMonth, utc.wDay,
                utc.wHour, utc.wMinute, utc.wSecond);
  return text;
}

}  // namespace

bool TrustCertificate(const fs::path& pemFile) {
  std::vector<BYTE> der = DerFromPem(pemFile);
  if (der.empty()) return false;
  HCERTSTORE store =
      CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
  if (store == nullptr) return false;
  BOOL added = CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, der.data(),
                                                static_cast<DWORD>(der.size()),
                                                CERT_STORE_ADD_REPLACE_EXISTING, nullptr);
  CertCloseStore(store, 0);
  return added != FALSE;
}

std::string ChainReport(const fs::path& pemFile, const wchar_t* serverName) {
  std::vector<BYTE> der = DerFromPem(pemFile);
  PCCERT_CONTEXT cert = der.empty() ? nullptr
                                    : CertCreateCertificateContext(X509_ASN_ENCODING, der.data(),
                                                                   static_cast<DWORD>(der.size()));
  if (cert == nullptr) return "the certificate file does not decode";
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  std::string report = "now " + UtcText(now) + ", valid " + UtcText(cert->pCertInfo->NotBefore) +
                       " to " + UtcText(cert->pCertInfo->NotAfter);
  CERT_CHAIN_PARA chainPara{};
  chainPara.cbSize = sizeof chainPara;
  PCCERT_CHAIN_CONTEXT chain = nullptr;
  if (!CertGetCertificateChain(nullptr, cert, nullptr, cert->hCertStore, &chainPara, 0, nullptr,
                               &chain)) {
    report += ", no chain (GetLastError=" + std::to_string(GetLastError()) + ")";
  } else {
    HTTPSPolicyCallbackData https{};
    https.cbStruct = sizeof https;
    https.dwAuthType = AUTHTYPE_SERVER;
    https.pwszServerName = const_cast<wchar_t*>(serverName);
    CERT_CHAIN_POLICY_PARA policyPara{};
    policyPara.cbSize = sizeof policyPara;
    policyPara.pvExtraPolicyPara = &https;
    CERT_CHAIN_POLICY_STATUS policy{};
    policy.cbSize = sizeof policy;
    CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_SSL, chain, &policyPara, &policy);
    report += ", chain errors " + Hex(chain->TrustStatus.dwErrorStatus) + ", SSL policy error " +
              Hex(policy.dwError);
    CertFreeCertificateChain(chain);
  }
  CertFreeCertificateContext(cert);
  return report;
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
