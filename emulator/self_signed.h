// A throw-away certificate for serving HTTPS on loopback.
#pragma once

#include <filesystem>
#include <string>

namespace orvane::emulator {

// Writes a new key (`keyFile`) and a self-signed certificate (`certFile`) for 127.0.0.1 and
// localhost, valid for a year. The certificate doubles as the CA file clients trust. False with
// a message on failure.
bool WriteSelfSignedCertificate(const std::filesystem::path& certFile,
                                const std::filesystem::path& keyFile, std::string& error);

}  // namespace orvane::emulator
