// orvane-service: the conversion service's emulator. See docs/service-emulator.md.
#include <csignal>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "emulator/service_emulator.h"

namespace {

using orvane::emulator::Account;
using orvane::emulator::EmulatorOptions;

constexpr char kUsage[] =
    "usage: orvane-service [options]\n"
    "\n"
    "  --host ADDRESS       address to listen on (default 127.0.0.1)\n"
    "  --port N             port; 0 picks a free one (default 0)\n"
    "  --https              serve HTTPS; without --cert/--key a self-signed certificate is made\n"
    "  --cert FILE --key FILE  certificate chain and private key (PEM) for --https\n"
    "  --data DIR           where jobs and the request log are kept (default orvane-service-data)\n"
    "  --config FILE        accounts as JSON: {\"accounts\": [{\"token\", \"balance\",\n"
    "                       \"dailyLimit\", \"conversionsLeft\", \"fault\"}]}\n"
    "  --account TOKEN[:BALANCE[:DAILY_LIMIT[:LEFT[:FAULT]]]]  add an account (repeatable)\n"
    "  --fault MODE         answer every token so: none, empty, 500, 503, slow,\n"
    "                       drop, cut-headers, non-utf8, large-body\n"
    "  --slow-ms N          delay of the slow fault (default 2000)\n"
    "\n"
    "The first line printed is the address it listens on.\n";

volatile std::sig_atomic_t stopRequested = 0;

[[noreturn]] void UsageError(const std::string& message) {
  std::cerr << "orvane-service: " << message << "\n\n" << kUsage;
  std::exit(2);
}

orvane::emulator::Fault FaultNamed(const std::string& name) {
  auto fault = orvane::emulator::ParseFault(name);
  if (!fault) UsageError("unknown fault \"" + name + "\"");
  return *fault;
}

int ToInt(const std::string& text, const std::string& what) {
  try {
    size_t used = 0;
    int value = std::stoi(text, &used);
    if (used == text.size()) return value;
  } catch (const std::exception&) {
  }
  UsageError(what + " must be a whole number, not \"" + text + "\"");
}

Account ParseAccount(const std::string& text) {
  std::vector<std::string> parts;
  std::stringstream stream(text);
  for (std::string part; std::getline(stream, part, ':');)
    parts.push_back(part);
  if (parts.empty() || parts[0].empty() || parts.size() > 5) UsageError("bad --account " + text);
  Account account{parts[0]};
  if (parts.size() > 1) account.balance = ToInt(parts[1], "the balance");
  if (parts.size() > 2) account.dailyLimit = ToInt(parts[2], "the daily limit");
  account.conversionsLeft = account.dailyLimit > 0 ? account.dailyLimit : -1;
  if (parts.size() > 3) account.conversionsLeft = ToInt(parts[3], "the conversions left");
  if (parts.size() > 4) account.fault = FaultNamed(parts[4]);
  return account;
}

void ReadConfig(const std::string& path, EmulatorOptions& options) {
  std::ifstream in(path);
  if (!in) UsageError("cannot read " + path);
  try {
    nlohmann::json config = nlohmann::json::parse(in);
    for (const auto& item : config.at("accounts")) {
      Account account{item.at("token").get<std::string>()};
      account.balance = item.value("balance", account.balance);
      account.dailyLimit = item.value("dailyLimit", account.dailyLimit);
      account.conversionsLeft =
          item.value("conversionsLeft", account.dailyLimit > 0 ? account.dailyLimit : -1);
      if (item.contains("fault")) account.fault = FaultNamed(item.at("fault").get<std::string>());
      options.accounts.push_back(account);
    }
  } catch (const nlohmann::json::exception& error) {
    UsageError(path + ": " + error.what());
  }
}

EmulatorOptions ParseOptions(const std::vector<std::string>& args) {
  EmulatorOptions options;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& flag = args[i];
    auto value = [&]() -> const std::string& {
      if (i + 1 >= args.size()) UsageError(flag + " needs a value");
      return args[++i];
    };
    if (flag == "--help") {
      std::cout << kUsage;
      std::exit(0);
    } else if (flag == "--host") {
      options.host = value();
    } else if (flag == "--port") {
      options.port = ToInt(value(), "the port");
    } else if (flag == "--https") {
      options.https = true;
    } else if (flag == "--cert") {
      options.certFile = value();
    } else if (flag == "--key") {
      options.keyFile = value();
    } else if (flag == "--data") {
      options.dataFolder = value();
    } else if (flag == "--config") {
      ReadConfig(value(), options);
    } else if (flag == "--account") {
      options.accounts.push_back(ParseAccount(value()));
    } else if (flag == "--fault") {
      options.fault = FaultNamed(value());
    } else if (flag == "--slow-ms") {
      options.slowMs = ToInt(value(), "the delay");
    } else {
      UsageError("unknown option " + flag);
    }
  }
  if (options.certFile.empty() != options.keyFile.empty())
    UsageError("--cert and --key go together");
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  EmulatorOptions options = ParseOptions({argv + 1, argv + argc});
  orvane::emulator::ServiceEmulator emulator(options);
  std::string error;
  if (!emulator.Start(error)) {
    std::cerr << "orvane-service: " << error << "\n";
    return 1;
  }
  // The address comes last: scripts wait for it and then read the lines before it.
  if (options.https)
    std::cout << "certificate: " << emulator.CertificateFile().string() << std::endl;
  std::cout << "orvane-service listening on " << emulator.BaseUrl() << std::endl;
  std::signal(SIGINT, [](int) { stopRequested = 1; });
  std::signal(SIGTERM, [](int) { stopRequested = 1; });
  while (!stopRequested)
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  emulator.Stop();
  return 0;
}
