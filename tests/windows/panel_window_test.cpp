// The Win32 panel, opened and used through the panel harness: settings read back and written,
// Save and Refresh, the worker thread, opening twice, closing, the logo, and a whole send.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"
#include "pipeline/panel_logic.h"
#include "plugin/harness/panel_harness.h"
#include "plugin/module_state.h"
#include "plugin/panel_resources.h"
#include "plugin/profile_settings.h"
#include "service/service_config.h"
#include "service/winhttp_client.h"
#include "tests/temp_folder.h"
#include "tests/windows/open_panels.h"
#include "tests/windows/service_under_test.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using plugin::PanelHarness;

constexpr char16_t kDashboard[] = u"https://dash.example";

HttpExchange Replied(int32_t status, std::string body) {
  return {HttpExchange::Outcome::kReplied, status, std::move(body), 0};
}
HttpExchange SendFailed(uint32_t code) {
  return {HttpExchange::Outcome::kSendFailed, 0, "", code};
}

// Answers every request with one reply; a request can be held until the test lets it go.
class FakeService final : public HttpClient {
 public:
  HttpExchange Exchange(const ParsedUrl&, std::u16string_view, const std::vector<std::u16string>&,
                        const std::string*) override {
    ++calls;
    workerThread = GetCurrentThreadId();
    if (hold != nullptr) WaitForSingleObject(hold, 10'000);
    return reply;
  }
  HttpExchange reply =
      Replied(200, R"({"success":true,"balance":5,"daily_limit":10,"conversions_left":7})");
  std::atomic<int> calls = 0;
  std::atomic<DWORD> workerThread = 0;
  HANDLE hold = nullptr;
};

class PanelWindow : public ::testing::Test {
 protected:
  void SetUp() override {
    auto loaded = host::memory::LoadSceneText(
        R"({"format": "orvane-scene/1", "settingsDirectory": ")" + SettingsFolderJson() + "\"}",
        folder_.path);
    ASSERT_TRUE(loaded.scene) << loaded.error;
    scene_ = std::move(loaded.scene);
    plugin::StartGdiplus();
    harness_ = std::make_unique<PanelHarness>(*scene_, scene_->files, service_,
                                              u"https://api.example", kDashboard);
  }
  void TearDown() override {
    harness_.reset();
    plugin::StopGdiplus();
  }

  // The settings folder without a trailing "\": the panel adds one.
  std::string SettingsFolderJson() const {
    std::string path = ToUtf8(folder_.path.u16string());
    std::string escaped;
    for (char c : path)
      escaped += c == '\\' ? std::string("\\\\") : std::string(1, c);
    return escaped;
  }
  fs::path IniFile() const { return folder_.path / "Quillbar.ini"; }
  std::u16string Setting(std::u16string_view key) const {
    return plugin::ProfileSettingsStore(IniFile().u16string()).Read(key);
  }
  PanelHarness& Panel() { return *harness_; }
  std::vector<std::u16string> MessageTexts() const {
    std::vector<std::u16string> texts;
    for (const auto& message : harness_->messages)
      texts.push_back(message.text);
    return texts;
  }

  testing::TempFolder folder_{"orvane-panel"};
  std::unique_ptr<host::memory::MemScene> scene_;
  FakeService service_;
  std::unique_ptr<PanelHarness> harness_;
};

TEST_F(PanelWindow, OpensWithTheSettingsFileReadBackExactly) {
  const struct {
    const char* file;
    bool displacement, targetA;
  } cases[] = {
      {"exportDisplacement=true\r\nblenderTarget=5.1\r\n", true, true},
      {"exportDisplacement=TRUE\r\nblenderTarget=\r\n", false, false},
      {"exportDisplacement=false\r\nblenderTarget=5.3\r\n", false, false},
      {"", false, false},
  };
  for (const auto& c : cases) {
    folder_.Write("Quillbar.ini", std::string("[Settings]\r\napiToken=tok-1\r\nexchangeFolder=C:\\"
                                              "jobs\r\n") +
                                      c.file);
    Panel().Open();
    ASSERT_NE(Panel().Panel(), nullptr);
    EXPECT_EQ(Panel().Text(IDC_VERSION), u"v3.41");
    EXPECT_EQ(Panel().Text(IDC_TOKEN), u"tok-1");
    EXPECT_EQ(Panel().Text(IDC_EXCHANGE_FOLDER), u"C:\\jobs");
    EXPECT_EQ(Panel().Checked(IDC_EXPORT_DISPLACEMENT), c.displacement) << c.file;
    EXPECT_EQ(Panel().Checked(IDC_TARGET_A), c.targetA) << c.file;
    EXPECT_EQ(Panel().Checked(IDC_TARGET_B), !c.targetA) << c.file;
    EXPECT_EQ(Panel().Text(IDC_STATUS_LINE1), u"Ready.");
    EXPECT_EQ(Panel().Text(IDC_LINK), kSiteAddress);
    Panel().CloseBox();
    EXPECT_EQ(Panel().Panel(), nullptr);
  }
  // A file that starts with the UTF-16 byte-order mark keeps text of any script.
  std::u16string text = u"\uFEFF[Settings]\r\napiToken=\u4E2D\u00FC\r\n";
  folder_.Write("Quillbar.ini", std::string(reinterpret_cast<const char*>(text.data()),
                                            text.size() * sizeof(char16_t)));
  Panel().Open();
  EXPECT_EQ(Panel().Text(IDC_TOKEN), u"\u4E2D\u00FC");
}

TEST_F(PanelWindow, EachControlWritesItsKeyTheMomentItChanges) {
  Panel().Open();
  Panel().Type(IDC_EXCHANGE_FOLDER, u"D:\\Exchange ");
  EXPECT_EQ(Setting(u"exchangeFolder"), u"D:\\Exchange");  // the profile functions trim
  Panel().Click(IDC_EXPORT_DISPLACEMENT);
  EXPECT_EQ(Setting(u"exportDisplacement"), u"true");
  Panel().Click(IDC_EXPORT_DISPLACEMENT);
  EXPECT_EQ(Setting(u"exportDisplacement"), u"false");
  Panel().Click(IDC_TARGET_A);
  EXPECT_EQ(Setting(u"blenderTarget"), u"5.1");
  EXPECT_FALSE(Panel().Checked(IDC_TARGET_B));
  Panel().Click(IDC_TARGET_B);
  EXPECT_EQ(Setting(u"blenderTarget"), u"5.2");
  Panel().Type(IDC_TOKEN, u"  tok-2 ");
  EXPECT_EQ(Setting(u"apiToken"), u"");  // the token waits for Save
  Panel().Click(IDC_SAVE);
  EXPECT_EQ(Setting(u"apiToken"), u"tok-2");

  Panel().folderToPick = u"E:\\Picked";
  Panel().Click(IDC_BROWSE);
  EXPECT_EQ(Panel().Text(IDC_EXCHANGE_FOLDER), u"E:\\Picked");
  EXPECT_EQ(Setting(u"exchangeFolder"), u"E:\\Picked");
  Panel().folderToPick.reset();  // cancelled: nothing changes
  Panel().Click(IDC_BROWSE);
  EXPECT_EQ(Panel().Text(IDC_EXCHANGE_FOLDER), u"E:\\Picked");

  Panel().Click(IDC_LINK);
  EXPECT_EQ(Panel().linksOpened, std::vector<std::u16string>{u"https://api.example"});
  // The settings survive the panel: the next opening reads them back.
  Panel().CloseBox();
  Panel().Open();
  EXPECT_EQ(Panel().Text(IDC_TOKEN), u"tok-2");
  EXPECT_FALSE(Panel().Checked(IDC_EXPORT_DISPLACEMENT));
  EXPECT_TRUE(Panel().Checked(IDC_TARGET_B));
}

TEST_F(PanelWindow, SaveAndRefreshRefuseAnEmptyOrBlankToken) {
  Panel().Open();
  for (std::u16string token : {u"", u"   "}) {
    Panel().Type(IDC_TOKEN, token);
    Panel().Click(IDC_SAVE);
    Panel().Click(IDC_REFRESH);
  }
  std::u16string empty = u"Token is empty - enter a token from " + std::u16string(kDashboard);
  EXPECT_EQ(MessageTexts(), (std::vector<std::u16string>{empty, u"Enter an API token.", empty,
                                                         u"Enter an API token."}));
  EXPECT_EQ(Setting(u"apiToken"), u"");
  EXPECT_EQ(Panel().messages[0].title, u"Orvane Platform");
  EXPECT_EQ(service_.calls, 0);  // no worker was started
  EXPECT_TRUE(Panel().Enabled(IDC_REFRESH));
  EXPECT_EQ(Panel().Text(IDC_BALANCE), u"-");
}

TEST_F(PanelWindow, RefreshAsksOnAWorkerAndShowsTheAnswer) {
  Panel().Open();
  const struct {
    HttpExchange reply;
    std::u16string balance, message;
  } cases[] = {
      {service_.reply, u"7 of 10 conversions left today", u""},
      {Replied(401, R"({"error":"missing or invalid token"})"), u"Invalid token",
       u"Invalid token.\nUpdate your token at " + std::u16string(kDashboard)},
      {SendFailed(12029), u"Error", u"Connection error:\nHTTP request failed, GetLastError=12029"},
  };
  service_.hold = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  for (const auto& c : cases) {
    Panel().messages.clear();
    service_.reply = c.reply;
    ResetEvent(service_.hold);
    Panel().Type(IDC_TOKEN, u"tok");
    Panel().Click(IDC_REFRESH);
    // While the worker waits for the service, the panel turns its spinner and takes no second
    // Refresh.
    EXPECT_EQ(Panel().Text(IDC_BALANCE), u"| Checking...");
    EXPECT_FALSE(Panel().Enabled(IDC_REFRESH));
    EXPECT_TRUE(Panel().PumpUntil([&] { return Panel().Text(IDC_BALANCE) == u"/ Checking..."; }));
    SetEvent(service_.hold);
    ASSERT_TRUE(Panel().PumpUntil([&] { return Panel().Enabled(IDC_REFRESH); }));
    EXPECT_EQ(Panel().Text(IDC_BALANCE), c.balance);
    EXPECT_EQ(MessageTexts(), c.message.empty() ? std::vector<std::u16string>{}
                                                : std::vector<std::u16string>{c.message});
  }
  EXPECT_NE(service_.workerThread, GetCurrentThreadId());
  CloseHandle(service_.hold);
}

TEST_F(PanelWindow, ASecondOpeningRaisesTheFirstAndClosingStopsTheSpinners) {
  Panel().Open();
  HWND first = Panel().Panel();
  Panel().Open();
  EXPECT_EQ(Panel().Panel(), first);
  EXPECT_EQ(testing::OpenPanels(), 1);

  // Closed while a Refresh is out: the spinner stops with the panel, and the late answer finds
  // no panel and is dropped.
  service_.hold = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  Panel().Type(IDC_TOKEN, u"tok");
  Panel().Click(IDC_REFRESH);
  Panel().CloseBox();
  EXPECT_EQ(Panel().Panel(), nullptr);
  EXPECT_FALSE(IsWindow(first));
  SetEvent(service_.hold);
  Panel().PumpUntil([] { return false; }, 300);
  // The next panel starts its spinner afresh.
  service_.hold = nullptr;
  Panel().Open();
  Panel().Type(IDC_TOKEN, u"tok");
  Panel().Click(IDC_REFRESH);
  EXPECT_EQ(Panel().Text(IDC_BALANCE), u"| Checking...");
  EXPECT_TRUE(Panel().PumpUntil([&] { return Panel().Enabled(IDC_REFRESH); }));
  // Leaving the utility closes it as well; leaving twice is harmless.
  Panel().LeaveUtility();
  Panel().LeaveUtility();
  EXPECT_EQ(Panel().Panel(), nullptr);
}

TEST_F(PanelWindow, TheLogoFitsTheScreen) {
  EXPECT_EQ(LogoResourceForDpi(0), IDR_LOGO);
  EXPECT_EQ(LogoResourceForDpi(96), IDR_LOGO);
  EXPECT_EQ(LogoResourceForDpi(143), IDR_LOGO);
  EXPECT_EQ(LogoResourceForDpi(144), IDR_LOGO_LARGE);
  EXPECT_EQ(LogoResourceForDpi(192), IDR_LOGO_LARGE);
  Panel().Open();
  auto bitmap = reinterpret_cast<HBITMAP>(
      SendDlgItemMessageW(Panel().Panel(), IDC_LOGO, STM_GETIMAGE, IMAGE_BITMAP, 0));
  // The control shows a copy (common controls 6 copy bitmaps with alpha); the module keeps its
  // own until shut-down.
  ASSERT_NE(bitmap, nullptr);
  ASSERT_NE(plugin::gLogoBitmap, nullptr);
  BITMAP size{};
  ASSERT_NE(GetObjectW(bitmap, sizeof size, &size), 0);
  UINT dpi = GetDpiForWindow(Panel().Panel());
  EXPECT_EQ(size.bmWidth, LogoResourceForDpi(dpi) == IDR_LOGO ? 320 : 640) << dpi;
  EXPECT_EQ(size.bmHeight, LogoResourceForDpi(dpi) == IDR_LOGO ? 60 : 120) << dpi;
  // Shut-down frees it, and a second shut-down finds nothing to free.
  Panel().LeaveUtility();
  plugin::StopGdiplus();
  EXPECT_EQ(plugin::gLogoBitmap, nullptr);
  plugin::StopGdiplus();
}

// "Export && Send" in the real panel against the emulator, over WinHTTP.
TEST(PanelSend, ExportAndSendReachesTheServiceAndPutsTheSceneBack) {
  ASSERT_TRUE(testing::Service().missing.empty()) << "run through tools/test windows";
  testing::TempFolder folder("orvane-panel-send");
  auto loaded =
      host::memory::LoadSceneFile(ORVANE_SOURCE_DIR "/examples/interior/interior.scene.json");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  auto& scene = *loaded.scene;
  scene.settingsDirectory = folder.path.u16string();
  std::vector<std::u16string> namesBefore;
  for (const auto& material : scene.materials())
    namesBefore.push_back(material->name);
  fs::create_directories(folder.path / "exchange");

  plugin::StartGdiplus();
  WinHttpClient http;
  {
    PanelHarness harness(scene, scene.files, http, testing::Service().url, kDashboard);
    harness.Open();
    harness.Type(IDC_TOKEN, u"unlimited");
    harness.Type(IDC_EXCHANGE_FOLDER, (folder.path / "exchange").u16string());
    harness.Click(IDC_TARGET_A);
    harness.Click(IDC_SEND);

    std::u16string status = harness.Text(IDC_STATUS_LINE1);
    EXPECT_EQ(status, u"Done  OK  Objects: 7");
    EXPECT_EQ(harness.Progress(), 100);
    EXPECT_TRUE(harness.Enabled(IDC_SEND));
    std::u16string jobName = harness.Text(IDC_STATUS_LINE2);
    ASSERT_EQ(jobName.rfind(u"Job: loft_interior_", 0), 0u) << ToUtf8(jobName);
    jobName = jobName.substr(5);
    EXPECT_TRUE(harness.messages.empty()) << ToUtf8(harness.messages.front().text);

    auto stored = testing::StoredJob(testing::Service().data, ToUtf8(jobName));
    ASSERT_TRUE(stored) << ToUtf8(jobName);
    std::string head = testing::FileContents(*stored / "head.txt");
    EXPECT_NE(head.find("\r\nX-Blender-Target-Version: 5.1\r\n"), std::string::npos);
    EXPECT_NE(testing::FileContents(*stored / "body.json").find("\"objects\""), std::string::npos);
    fs::path job = folder.path / "exchange" / jobName;
    for (const char* kept : {"loft_interior.fbx", "1.log", "textures/oak_diffuse.jpg",
                             "textures/oak_normal.png", "textures/fabric_weave.png"}) {
      EXPECT_TRUE(fs::is_regular_file(job / kept)) << kept;
    }
    EXPECT_FALSE(fs::exists(job / "1.json"));
  }
  plugin::StopGdiplus();
  std::vector<std::u16string> namesAfter;
  for (const auto& material : scene.materials())
    namesAfter.push_back(material->name);
  EXPECT_EQ(namesAfter, namesBefore);
}

}  // namespace
}  // namespace orvane
