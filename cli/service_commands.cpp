#include <ostream>

#include "base/wide_text.h"
#include "cli/commands.h"
#include "cli/flags.h"
#include "cli/user_settings.h"
#include "host/environment.h"
#include "host/local_file_system.h"
#include "pipeline/ini_settings.h"
#include "service/account_status.h"
#include "service/curl_http_client.h"
#include "service/job_submission.h"
#include "service/service_config.h"

namespace orvane::cli {

namespace {

std::string Utf8(std::u16string_view text) {
  return ToUtf8(text);
}

CurlHttpClient MakeClient(const ParsedFlags& flags) {
  return CurlHttpClient(flags.Has("--ca-file") ? flags.Get("--ca-file") : std::string());
}

}  // namespace

int RunBalance(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseFlags(args, {"--service", "--token", "--ca-file"}, {});
  if (flags.error.empty() && !flags.positional.empty())
    flags.error = "unexpected " + flags.positional[0];
  if (!flags.error.empty()) return UsageError(err, flags.error);

  // As for a send: the command line, then ORVANE_TOKEN, then the token the settings file keeps.
  std::u16string token;
  if (flags.Has("--token")) {
    token = FromUtf8(flags.Get("--token"));
  } else if (auto fromEnvironment = host::ReadProcessEnvironment(u"ORVANE_TOKEN")) {
    token = *fromEnvironment;
  } else {
    token = IniSettingsStore(UserSettingsFile()).Read(u"apiToken");
  }
  std::u16string service =
      flags.Has("--service") ? FromUtf8(flags.Get("--service")) : std::u16string(kServiceBaseUrl);
  CurlHttpClient client = MakeClient(flags);
  AccountStatus status = QueryAccountStatus(client, service, TrimWhitespace(token));
  if (status.ok) {
    out << Utf8(BalanceText(status)) << "\n";
    return kExitOk;
  }
  // The same words the panel uses for the same answers.
  if (status.error == u"invalid_token" || status.error == u"token_empty") {
    err << "Invalid token.\nUpdate your token at " << Utf8(kDashboardUrl) << "\n";
  } else {
    err << "Connection error:\n" << Utf8(status.error) << "\n";
  }
  return kExitFailure;
}

int RunSubmit(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseFlags(args, {"--service", "--token", "--job", "--target", "--ca-file"},
                                 {"--service", "--token", "--job"});
  if (flags.error.empty() && flags.positional.size() != 1) flags.error = "give exactly one PACKAGE";
  std::string target = flags.Has("--target") ? flags.Get("--target") : "5.2";
  if (flags.error.empty() && target != "5.1" && target != "5.2") {
    flags.error = "--target must be 5.1 or 5.2";
  }
  if (!flags.error.empty()) return UsageError(err, flags.error);

  CurlHttpClient client = MakeClient(flags);
  host::LocalFileSystem files;
  HttpResult result =
      SubmitJob(client, files, FromUtf8(flags.Get("--service")), FromUtf8(flags.positional[0]),
                TrimWhitespace(FromUtf8(flags.Get("--token"))), FromUtf8(flags.Get("--job")),
                FromUtf8(target));
  (result.ok ? out : err) << "HTTP " << result.status << "\n" << Utf8(result.text) << "\n";
  return result.ok ? kExitOk : kExitFailure;
}

}  // namespace orvane::cli
