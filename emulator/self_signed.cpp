#include "emulator/self_signed.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdint>
#include <cstdio>
#include <memory>

namespace orvane::emulator {

namespace {

struct KeyDeleter {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct CertDeleter {
  void operator()(X509* cert) const { X509_free(cert); }
};
struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};

bool AddExtension(X509* cert, int nid, const char* value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, cert, cert, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
  if (extension == nullptr) return false;
  bool added = X509_add_ext(cert, extension, -1) == 1;
  X509_EXTENSION_free(extension);
  return added;
}

bool WritePem(const std::filesystem::path& path, auto write) {
  std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "wb"));
  return file && write(file.get()) == 1;
}

}  // namespace

bool WriteSelfSignedCertificate(const std::filesystem::path& certFile,
                                const std::filesystem::path& keyFile, std::string& error) {
  std::unique_ptr<EVP_PKEY, KeyDeleter> key(EVP_EC_gen("P-256"));
  std::unique_ptr<X509, CertDeleter> cert(X509_new());
  if (!key || !cert) {
    error = "cannot create a key";
    return false;
  }
  X509_set_version(cert.get(), 2);
  // Each certificate gets its own serial number: two emulators' certificates share their issuer
  // name, and a certificate store may take two with the same issuer and serial for one.
  uint64_t serial = 0;
  if (RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial) != 1) {
    error = "cannot draw a serial number";
    return false;
  }
  ASN1_INTEGER_set_uint64(X509_get_serialNumber(cert.get()), (serial >> 1) | 1);  // positive
  // Valid from a day back, so that a clock that differs a little between the emulator and its
  // client never makes a fresh certificate "not yet valid".
  X509_gmtime_adj(X509_getm_notBefore(cert.get()), -24L * 3600);
  X509_gmtime_adj(X509_getm_notAfter(cert.get()), 365L * 24 * 3600);
  X509_set_pubkey(cert.get(), key.get());
  X509_NAME* name = X509_get_subject_name(cert.get());
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>("127.0.0.1"), -1, -1, 0);
  X509_set_issuer_name(cert.get(), name);
  bool extended =
      AddExtension(cert.get(), NID_subject_alt_name, "IP:127.0.0.1,DNS:localhost") &&
      AddExtension(cert.get(), NID_basic_constraints, "critical,CA:TRUE") &&
      AddExtension(cert.get(), NID_key_usage, "critical,digitalSignature,keyCertSign") &&
      AddExtension(cert.get(), NID_ext_key_usage, "serverAuth");
  if (!extended || X509_sign(cert.get(), key.get(), EVP_sha256()) == 0) {
    error = "cannot sign the certificate";
    return false;
  }
  bool written = WritePem(keyFile,
                          [&](FILE* file) {
                            return PEM_write_PrivateKey(file, key.get(), nullptr, nullptr, 0,
                                                        nullptr, nullptr);
                          }) &&
                 WritePem(certFile, [&](FILE* file) { return PEM_write_X509(file, cert.get()); });
  if (!written) error = "cannot write " + certFile.string() + " or " + keyFile.string();
  return written;
}

}  // namespace orvane::emulator
