// The service emulator that `tools/test windows` starts on the Linux side for the Windows tests:
// one plain HTTP instance and one HTTPS instance with a certificate for "localhost".
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvane::testing {

struct ServiceUnderTest {
  std::u16string url;           // http://127.0.0.1:PORT
  std::u16string tlsUrl;        // https://localhost:PORT, with a certificate the test may trust
  std::u16string untrustedUrl;  // https://localhost:PORT, with one it never trusts
  std::filesystem::path data, certificate;
  std::string missing;  // what the environment lacks, when the emulator was not started
};

// From ORVANE_TEST_SERVICE, ORVANE_TEST_SERVICE_DATA, ORVANE_TEST_TLS_SERVICE,
// ORVANE_TEST_TLS_CERT and ORVANE_TEST_UNTRUSTED_SERVICE.
const ServiceUnderTest& Service();

// Adds the PEM certificate to the current user's trusted roots (of the test's own wine prefix).
// The system reads the roots once per process, before its first secure request.
bool TrustCertificate(const std::filesystem::path& pemFile);

// What the system's own chain check makes of the PEM certificate for `serverName`: the time now
// and the validity period as it reads them, the chain's error bits and the SSL policy's error.
// Said when a secure request fails, so that a failure on another machine explains itself.
std::string ChainReport(const std::filesystem::path& pemFile, const wchar_t* serverName);

// Wine's WinHTTP takes a reply that breaks off right after its status line for a complete one
// (status 200, no body), where Windows fails the request; tests of that case skip it under wine.
bool RunningUnderWine();

// The folder of the stored job whose request named `encodedJobName`.
std::optional<std::filesystem::path> StoredJob(const std::filesystem::path& data,
                                               const std::string& encodedJobName);

}  // namespace orvane::testing
