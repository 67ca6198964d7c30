// The panel's settings file and handlers, and the send end to end against the emulator.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "emulator/service_emulator.h"
#include "host/file_read.h"
#include "host/forwarding_file_system.h"
#include "host/memory/scene_file.h"
#include "pipeline/ini_settings.h"
#include "pipeline/panel_logic.h"
#include "pipeline/send_pipeline.h"
#include "service/curl_http_client.h"
#include "tests/recording_panel.h"
#include "tests/temp_folder.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::FileContents;
using testing::TempFolder;

// Text as the profile functions write a Unicode file: a byte-order mark, then UTF-16LE.
std::string Utf16Le(std::u16string_view text) {
  std::string bytes = "\xff\xfe";
  for (char16_t c : text) {
    bytes += static_cast<char>(c & 0xFF);
    bytes += static_cast<char>(c >> 8);
  }
  return bytes;
}

TEST(PanelSettings, FileValuesBecomeControlStatesExactly) {
  const struct {
    std::string file;
    bool displacement, targetA;
    std::u16string token, folder;
  } cases[] = {
      {"[Settings]\r\nexportDisplacement=true\r\nblenderTarget=5.1\r\n", true, true, u"", u""},
      {"[Settings]\r\nexportDisplacement=TRUE\r\nblenderTarget=5.3\r\n", false, false, u"", u""},
      {"[Settings]\r\nblenderTarget=\r\n", false, false, u"", u""},
      {"", false, false, u"", u""},
      {"[other]\r\napiToken=elsewhere\r\n[SETTINGS]\r\n  APITOKEN = tok "
       "\r\nexchangeFolder=\"D:\\x\\\"\r\n",
       false, false, u"tok", u"D:\\x\\"},
      {Utf16Le(u"[Settings]\r\napiToken=w\r\n"), false, false, u"w",
       u""},  // UTF-16 with its byte-order mark
      {"[Settings]\nexchangeFolder=C:\\Caf\xe9\n", false, false, u"", u"C:\\Caf\u00e9"},  // ANSI
  };
  for (const auto& c : cases) {
    TempFolder folder("orvane-settings");
    std::ofstream(folder.path / "Quillbar.ini", std::ios::binary) << c.file;
    IniSettingsStore settings(folder.path / "Quillbar.ini");
    testing::RecordingPanel panel;
    LoadPanelSettings(panel, settings);
    SCOPED_TRACE(c.file);
    EXPECT_EQ(panel.texts[kVersionControl], u"v3.41");
    EXPECT_EQ(panel.checked[control::kExportDisplacement], c.displacement);
    EXPECT_EQ(panel.checked[control::kTargetA], c.targetA);
    EXPECT_EQ(panel.checked[control::kTargetB], !c.targetA);
    EXPECT_EQ(panel.texts[control::kToken], c.token);
    EXPECT_EQ(panel.texts[control::kExchangeFolder], c.folder);
  }
}

TEST(PanelSettings, EachChangeIsWrittenAtOnceAndReadsBackTheSame) {
  TempFolder folder("orvane-settings-write");
  fs::path file = folder.path / "Quillbar.ini";
  std::ofstream(file, std::ios::binary)
      << "[Other]\r\nkeep=1\r\n\r\n[Settings]\r\napiToken=old\r\n\r\n";
  IniSettingsStore settings(file);
  testing::RecordingPanel panel;
  panel.texts[control::kToken] = u"  new token ";
  OnSave(panel, settings, u"https://dash");
  panel.texts[control::kExchangeFolder] = u"D:\\exchange\\";
  OnFolderEdited(panel, settings);
  panel.checked[control::kExportDisplacement] = true;
  OnExportDisplacementClicked(panel, settings);
  panel.checked[control::kTargetA] = true;
  OnTargetClicked(panel, settings);
  EXPECT_EQ(FileContents(file),
            "[Other]\r\nkeep=1\r\n\r\n[Settings]\r\napiToken=new "
            "token\r\nexchangeFolder=D:\\exchange\\\r\n"
            "exportDisplacement=true\r\nblenderTarget=5.1\r\n\r\n");
  struct stat info {};
  ASSERT_EQ(stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);  // it holds the token

  testing::RecordingPanel reopened;
  LoadPanelSettings(reopened, settings);
  EXPECT_EQ(reopened.texts[control::kToken], u"new token");
  EXPECT_EQ(reopened.texts[control::kExchangeFolder], u"D:\\exchange\\");
  EXPECT_TRUE(reopened.checked[control::kExportDisplacement]);
  EXPECT_TRUE(reopened.checked[control::kTargetA]);
}

TEST(PanelSettings, AMissingOrUnreadableFileGivesTheDefaults) {
  TempFolder folder("orvane-settings-missing");
  for (fs::path file : {folder.path / "absent.ini", folder.path}) {  // a folder is unreadable
    IniSettingsStore settings(file);
    testing::RecordingPanel panel;
    LoadPanelSettings(panel, settings);
    EXPECT_FALSE(panel.checked[control::kExportDisplacement]);
    EXPECT_TRUE(panel.checked[control::kTargetB]);
    EXPECT_EQ(panel.texts[control::kToken], u"");
  }
  EXPECT_EQ(SettingsFilePath(u"C:\\Users\\a\\plugcfg"), u"C:\\Users\\a\\plugcfg\\Quillbar.ini");
  EXPECT_EQ(SettingsFilePath(u"C:\\plugcfg\\"), u"C:\\plugcfg\\Quillbar.ini");
}

TEST(PanelHandlers, SaveRefreshAndItsResultSayWhatHappened) {
  TempFolder folder("orvane-handlers");
  IniSettingsStore settings(folder.path / "Quillbar.ini");
  testing::RecordingPanel panel;
  PanelState state;
  panel.texts[control::kToken] = u"   ";
  OnSave(panel, settings, u"https://dash");
  int workers = 0;
  OnRefresh(panel, state, u"https://svc", [&](std::u16string, std::u16string) { ++workers; });
  EXPECT_EQ(workers, 0);  // a blank token starts no worker
  panel.texts[control::kToken] = u" tok ";
  std::u16string askedToken;
  OnRefresh(panel, state, u"https://svc",
            [&](std::u16string, std::u16string token) { askedToken = token; });
  EXPECT_EQ(askedToken, u"tok");
  AccountStatus invalid;
  invalid.error = u"invalid_token";
  OnRefreshResult(panel, state, invalid, u"https://dash");
  AccountStatus down;
  down.error = u"Server returned HTTP 503";
  OnRefreshResult(panel, state, down, u"https://dash");
  EXPECT_EQ(
      panel.Only({"box", "enable", "timer", "text 1005"}),
      (std::vector<std::string>{
          "box [Orvane Platform] Token is empty - enter a token from https://dash (none) -> ok",
          "box [Orvane Platform] Enter an API token. (none) -> ok", "enable 1006 off",
          "timer 1002 start", "text 1005 | Checking...", "timer 1002 stop", "enable 1006 on",
          "text 1005 Invalid token",
          "box [Orvane Platform] Invalid token.\nUpdate your token at https://dash (none) -> ok",
          "timer 1002 stop", "enable 1006 on", "text 1005 Error",
          "box [Orvane Platform] Connection error:\nServer returned HTTP 503 (none) -> ok"}));
  EXPECT_EQ(settings.Read(u"apiToken"), u"");
}

// A whole send over real sockets: the job the service stored is the package that was built.
TEST(SendEndToEnd, TheStoredJobIsThePackageAndTheSceneComesBack) {
  TempFolder folder("orvane-send-e2e");
  emulator::EmulatorOptions options;
  options.dataFolder = folder.path / "service";
  options.accounts = {{"demo", 5, 10, 10}};
  emulator::ServiceEmulator service(options);
  std::string error;
  ASSERT_TRUE(service.Start(error)) << error;

  auto loaded =
      host::memory::LoadSceneFile(ORVANE_SOURCE_DIR "/examples/interior/interior.scene.json");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  auto& scene = *loaded.scene;
  std::vector<std::u16string> namesBefore;
  for (const auto& material : scene.materials())
    namesBefore.push_back(material->name);

  // Keeps the package's bytes as they were when the send deleted them.
  struct KeepingFiles final : host::ForwardingFileSystem {
    using ForwardingFileSystem::ForwardingFileSystem;
    std::string package;
    bool DeleteFile(std::u16string_view p) override {
      if (p.ends_with(u"1.json")) package = inner_.ReadBytes(p, 1 << 26).value_or("");
      return inner_.DeleteFile(p);
    }
  } files(scene.files);

  fs::create_directories(folder.path / "exchange");
  testing::RecordingPanel panel;
  panel.texts[control::kToken] = u"demo";
  panel.texts[control::kExchangeFolder] = (folder.path / "exchange").u16string();
  panel.checked[control::kTargetA] = true;
  PanelState state;
  NodeTreeState trees;
  CurlHttpClient http;
  SendContext context{scene,
                      files,
                      http,
                      panel,
                      state,
                      trees,
                      FromUtf8(service.BaseUrl()),
                      u"https://dash",
                      [] { return uint64_t{42}; },
                      [](std::u16string_view) { return std::nullopt; },
                      u'/'};
  RunSendPipeline(context);

  EXPECT_EQ(panel.texts[control::kStatusLine1], u"Done  OK  Objects: 7");
  fs::path job = folder.path / "service" / "jobs" / "000001";
  EXPECT_FALSE(files.package.empty());
  EXPECT_EQ(FileContents(job / "body.json"), files.package);
  std::string head = FileContents(job / "head.txt");
  EXPECT_NE(head.find("\r\nX-Job-Name: loft_interior_" + ToUtf8(TickCode(42)) + "\r\n"),
            std::string::npos);
  EXPECT_NE(head.find("\r\nX-Blender-Target-Version: 5.1\r\n"), std::string::npos);
  fs::path jobFolder = folder.path / "exchange" / ("loft_interior_" + ToUtf8(TickCode(42)));
  for (const char* kept : {"loft_interior.fbx", "1.log", "textures/oak_diffuse.jpg",
                           "textures/oak_normal.png", "textures/fabric_weave.png"}) {
    EXPECT_TRUE(fs::is_regular_file(jobFolder / kept)) << kept;
  }
  EXPECT_FALSE(fs::exists(jobFolder / "1.json"));
  std::vector<std::u16string> namesAfter;
  for (const auto& material : scene.materials())
    namesAfter.push_back(material->name);
  EXPECT_EQ(namesAfter, namesBefore);
}

}  // namespace
}  // namespace orvane
