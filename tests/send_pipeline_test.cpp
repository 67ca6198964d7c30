// The send, path by path: what the panel shows, what the scene keeps, what the job folder holds.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "host/forwarding_file_system.h"
#include "host/memory/scene_file.h"
#include "host/memory/support_snapshot.h"
#include "pipeline/scene_scripts.h"
#include "pipeline/send_pipeline.h"
#include "tests/recording_panel.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using host::memory::ExportBehaviour;
using host::memory::MemScene;
using host::memory::ScriptRule;
using Outcome = HttpExchange::Outcome;

constexpr char16_t kService[] = u"https://api.example";
constexpr char16_t kDashboard[] = u"https://example/dashboard";
constexpr uint64_t kTicks = 123456789;  // TickCode: "lcrz3200"? computed below

// Table rows hold exchanges made by functions: GCC 12 at -O3 misreads nested aggregates with
// strings as maybe uninitialised.
HttpExchange Replied(int32_t status, std::string body) {
  return {Outcome::kReplied, status, std::move(body), 0};
}
HttpExchange SendFailed(uint32_t errorCode) {
  HttpExchange exchange;
  exchange.outcome = Outcome::kSendFailed;
  exchange.errorCode = errorCode;
  return exchange;
}

// Answers the balance check and the job from a script, and keeps what it was sent.
class ScriptedService final : public HttpClient {
 public:
  HttpExchange balance{Outcome::kReplied, 200,
                       R"({"balance":5,"daily_limit":10,"conversions_left":7})", 0};
  HttpExchange job{Outcome::kReplied, 200, R"({"success":true,"job_id":"job-1"})", 0};
  bool throwOnJob = false;
  std::vector<std::string> paths;
  std::vector<std::u16string> jobHeaders;
  std::string jobBody;

  HttpExchange Exchange(const ParsedUrl& url, std::u16string_view,
                        const std::vector<std::u16string>& headers,
                        const std::string* body) override {
    paths.push_back(ToUtf8(url.path));
    if (url.path == u"/api/balance") return balance;
    if (throwOnJob) throw std::runtime_error("network stack failure");
    jobHeaders = headers;
    jobBody = body != nullptr ? *body : "";
    return job;
  }
};

// A file system that throws on its Nth call, to show that every way out restores the scene.
class FailingFileSystem final : public host::ForwardingFileSystem {
 public:
  FailingFileSystem(host::FileSystem& inner, int failAt)
      : ForwardingFileSystem(inner), failAt_(failAt) {}
  bool Exists(std::u16string_view p) const override {
    Tick();
    return inner_.Exists(p);
  }
  std::optional<std::string> ReadBytes(std::u16string_view p, uint64_t max) const override {
    Tick();
    return inner_.ReadBytes(p, max);
  }
  bool WriteStreamed(std::u16string_view p,
                     const std::function<void(host::ByteSink&)>& produce) override {
    Tick();
    return inner_.WriteStreamed(p, produce);
  }
  bool CreateDirectory(std::u16string_view p) override {
    Tick();
    return inner_.CreateDirectory(p);
  }
  bool CopyFile(std::u16string_view a, std::u16string_view b) override {
    Tick();
    return inner_.CopyFile(a, b);
  }
  // Deleting is not counted: it runs in the guards themselves.

 private:
  void Tick() const {
    if (++calls_ == failAt_) throw std::runtime_error("disk");
  }
  mutable int calls_ = 0;
  int failAt_;
};

constexpr char kScene[] = R"json({"format": "orvane-scene/1",
  "file": {"name": "my:scene.v2.max", "path": "C:\\Projects\\my:scene.v2.max"},
  "nodes": [{"id": "wall", "name": "Wall", "object": "box", "material": "brick"},
            {"id": "wall2", "name": "Wall", "object": "box", "material": "brick2"}],
  "objects": [{"id": "box", "class": "Box", "superClass": "geometry",
               "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]]}}],
  "materials": [{"id": "brick", "class": "VRayMtl", "name": "Brick Wall"},
                {"id": "brick2", "class": "VRayMtl", "name": "Brick.Wall"}],
  "scripts": [{"contains": ["BAKED:"], "reply": "BAKED:2"},
              {"contains": ["CONVERTED:"], "reply": "CONVERTED:3"}]})json";

class SendPipeline : public ::testing::Test {
 protected:
  void SetUp() override {
    exchange_ = fs::temp_directory_path() / ("orvane-send-" + std::to_string(getpid()));
    fs::remove_all(exchange_);
    fs::create_directories(exchange_);
    auto loaded = host::memory::LoadSceneText(kScene, ".");
    ASSERT_TRUE(loaded.scene) << loaded.error;
    scene_ = std::move(loaded.scene);
    panel_ = {};
    state_ = {};
    service_ = {};
    vrayConvert_.reset();
    panel_.texts[control::kToken] = u"  tok  ";
    panel_.texts[control::kExchangeFolder] = exchange_.u16string();
    panel_.checked[control::kTargetB] = true;
  }
  void TearDown() override { fs::remove_all(exchange_); }

  void Send(host::FileSystem* files = nullptr, host::memory::SupportSnapshot* snapshot = nullptr) {
    SendContext context{snapshot != nullptr ? static_cast<host::Interface&>(*snapshot) : *scene_,
                        files != nullptr ? *files : scene_->files,
                        service_,
                        panel_,
                        state_,
                        trees_,
                        kService,
                        kDashboard,
                        [] { return kTicks; },
                        [this](std::u16string_view) { return vrayConvert_; },
                        u'/',
                        snapshot};
    RunSendPipeline(context);
  }
  fs::path JobFolder() const { return exchange_ / ("my_scene.v2_" + ToUtf8(TickCode(kTicks))); }
  std::vector<std::string> Boxes() const { return panel_.Only({"box"}); }
  // Status line 1 as it was set, spinner frames included.
  std::vector<std::string> Statuses() const { return panel_.Only({"text 1013"}); }
  bool ScriptRan(std::u16string_view part) const {
    for (const auto& run : scene_->scriptsRun) {
      if (run.script.find(part) != std::u16string::npos) return true;
    }
    return false;
  }
  std::u16string MaterialName(const std::string& id) {
    return static_cast<host::Mtl*>(scene_->FindById(id))->GetName();
  }

  // The whole run as the panel saw it, then the scripts run and what the job folder holds,
  // against a reviewed file in tests/data/golden/traces (ORVANE_UPDATE_GOLDEN=1 rewrites it).
  void ExpectTrace(const std::string& name) {
    std::string trace;
    for (const std::string& event : panel_.events)
      trace += event + "\n";
    trace += "scripts:";
    for (const auto& run : scene_->scriptsRun) {
      trace += run.script == kSplineCopiesScript    ? " copies"
               : run.script == kSplineRestoreScript ? " restore"
               : run.script == kGeometryBakeScript  ? " bake"
               : run.script == kVRayConvertScript   ? " vray"
                                                    : " probe";
    }
    trace += "\njob folder:";
    std::vector<std::string> kept;
    if (fs::is_directory(JobFolder())) {
      for (const auto& entry : fs::recursive_directory_iterator(JobFolder()))
        kept.push_back(entry.path().lexically_relative(JobFolder()).generic_string());
    }
    std::sort(kept.begin(), kept.end());
    for (const std::string& entry : kept)
      trace += " " + entry;
    trace += "\n";
    for (size_t at; (at = trace.find(exchange_.string())) != std::string::npos;)
      trace.replace(at, exchange_.string().size(), "<exchange>");
    std::string file = name;
    for (char& c : file)
      c = c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    fs::path golden = fs::path(ORVANE_TEST_DATA) / "golden" / "traces" / (file + ".trace");
    if (std::getenv("ORVANE_UPDATE_GOLDEN") != nullptr)
      std::ofstream(golden, std::ios::binary) << trace;
    std::ifstream in(golden, std::ios::binary);
    ASSERT_TRUE(in) << golden << " (run with ORVANE_UPDATE_GOLDEN=1)";
    std::string expected((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(trace, expected) << golden;
  }

  fs::path exchange_;
  std::unique_ptr<MemScene> scene_;
  testing::RecordingPanel panel_;
  PanelState state_;
  NodeTreeState trees_;
  ScriptedService service_;
  std::optional<std::u16string> vrayConvert_;
};

TEST_F(SendPipeline, AnAcceptedJobShowsEveryStepAndLeavesTheSceneAsItWas) {
  Send();
  ExpectTrace("accepted");
  EXPECT_EQ(
      Statuses(),
      (std::vector<std::string>{
          "text 1013 | Preparing job folder...", "text 1013 | Baking MultiTexture vertex colors...",
          "text 1013 | Checking for V-Ray materials...",
          "text 1013 | Deduplicating material names...", "text 1013 | Exporting FBX...",
          "text 1013 | Collecting textures...", "text 1013 | Textures: 0",
          "text 1013 | Building Package...", "text 1013 | Package ready. Objects: 2",
          "text 1013 | Sending to server...", "text 1013 Done  OK  Objects: 2"}));
  EXPECT_EQ(panel_.Only({"progress"}),
            (std::vector<std::string>{"progress 8", "progress 12", "progress 15", "progress 20",
                                      "progress 25", "progress 40", "progress 55", "progress 65",
                                      "progress 78", "progress 88", "progress 100"}));
  EXPECT_EQ(panel_.Only({"enable", "timer"}),
            (std::vector<std::string>{"enable 1011 off", "timer 1001 start", "timer 1001 stop",
                                      "enable 1011 on"}));
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(panel_.texts[control::kBalance], u"7 of 10 conversions left today");
  EXPECT_EQ(panel_.texts[control::kStatusLine2], u"Job: my_scene.v2_" + TickCode(kTicks));

  // The job folder keeps the FBX file and the textures folder, not the package.
  EXPECT_TRUE(fs::is_regular_file(JobFolder() / "my_scene.v2.fbx"));
  EXPECT_TRUE(fs::is_directory(JobFolder() / "textures"));
  EXPECT_FALSE(fs::exists(JobFolder() / "1.json"));
  // The package that was sent is the one built with the safe names, under the job's headers.
  EXPECT_NE(service_.jobBody.find("Brick_Wall_01"), std::string::npos);
  EXPECT_EQ(service_.jobHeaders[1], u"X-Job-Name: my_scene.v2_" + TickCode(kTicks));
  EXPECT_EQ(service_.jobHeaders[2], u"X-Blender-Target-Version: 5.2");
  // The user's names are back; the spline twins are gone.
  EXPECT_EQ(MaterialName("brick"), u"Brick Wall");
  EXPECT_EQ(MaterialName("brick2"), u"Brick.Wall");
  EXPECT_TRUE(ScriptRan(u"RESTORED:"));
}

TEST_F(SendPipeline, RefusalsBeforeTheSendStartsChangeNothing) {
  const struct {
    const char* label;  // also the trace's file name
    std::u16string token, folder;
    HttpExchange balance;
    std::string box;
  } cases[] = {
      {"empty token", u"   ", u"",
       HttpExchange(),  // never asked
       "box [Orvane Platform] Invalid token.\nEnter your token from https://example/dashboard "
       "(none) -> ok"},
      {"invalid token", u"tok", u"", Replied(401, R"({"error":"missing or invalid token"})"),
       "box [Orvane Platform] Invalid token.\nUpdate your token at https://example/dashboard "
       "(none) -> ok"},
      {"service unreachable", u"tok", u"", SendFailed(7),
       "box [Orvane Platform] Cannot connect to server:\nHTTP request failed, GetLastError=7 "
       "(none) -> ok"},
      {"empty folder", u"tok", u"", Replied(200, "{}"),
       "box [Orvane Platform] Select an Exchange Folder. (none) -> ok"},
      {"missing folder", u"tok", u"/nonexistent/exchange", Replied(200, "{}"),
       "box [Orvane Platform] Folder does not exist:\n/nonexistent/exchange (none) -> ok"},
  };
  for (const auto& c : cases) {
    testing::RecordingPanel panel;
    panel.texts[control::kToken] = c.token;
    panel.texts[control::kExchangeFolder] = c.folder;
    panel_ = panel;
    service_.balance = c.balance;
    Send();
    EXPECT_EQ(Boxes(), std::vector<std::string>{c.box}) << c.label;
    EXPECT_TRUE(panel_.Only({"enable", "progress"}).empty()) << c.label;
    EXPECT_TRUE(scene_->scriptsRun.empty()) << c.label;
    ExpectTrace(c.label);
  }
}

TEST_F(SendPipeline, DecliningTheBakeStopsButStillRemovesTheSplineTwins) {
  panel_.checked[control::kBakeGeometry] = true;
  panel_.answers = {MessageAnswer::kNo};
  Send();
  ExpectTrace("bake declined");
  std::vector<std::string> boxes = Boxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_TRUE(
      boxes[0].starts_with("box [Bake Geometry] WARNING!\n\nThe scene geometry will be baked:"));
  EXPECT_TRUE(boxes[0].ends_with("Continue? (warning) -> no"));
  EXPECT_EQ(panel_.Only({"enable", "text 1013", "progress"}),
            (std::vector<std::string>{"enable 1011 off", "enable 1011 on", "progress 0",
                                      "text 1013 Ready."}));
  EXPECT_TRUE(ScriptRan(u"RESTORED:"));
  EXPECT_FALSE(ScriptRan(u"resetXForm"));
}

TEST_F(SendPipeline, AcceptingTheBakeRunsItWithErrorsShown) {
  panel_.checked[control::kBakeGeometry] = true;
  panel_.answers = {MessageAnswer::kYes};
  Send();
  ExpectTrace("bake accepted");
  bool baked = false;
  for (const auto& run : scene_->scriptsRun) {
    if (run.script.find(u"resetXForm") != std::u16string::npos)
      baked = !run.quietErrors && !run.wantResult;
  }
  EXPECT_TRUE(baked);
  EXPECT_EQ(panel_.texts[control::kStatusLine1], u"Done  OK  Objects: 2");
}

TEST_F(SendPipeline, EachFailureAfterTheStartIsShownAndUndone) {
  const struct {
    const char* label;
    std::optional<std::u16string> vray;
    std::u16string vrayReply;
    ExportBehaviour exportBehaviour;
    bool blockPackage;
    std::string box;     // the error box, or empty for none
    std::string status;  // final status line 1
  } cases[] = {
      {"V-Ray failure with a text", u"1", u"ERROR:fileIn failed: x", ExportBehaviour::kWrites,
       false,
       "box [Orvane Platform - Error] V-Ray conversion failed:\nfileIn failed: x (error) -> ok",
       "Error."},
      {"V-Ray failure without a text", u"1", u"ERROR:", ExportBehaviour::kWrites, false, "",
       "Done  OK  Objects: 2"},
      {"FBX refused", std::nullopt, u"", ExportBehaviour::kFails, false,
       "box [Orvane Platform - Error] FBX export failed (FBX exporter not available or export was "
       "rejected \u2014 is the FBX plugin installed in 3ds Max?) (error) -> ok",
       "Error."},
      {"package not writable", std::nullopt, u"", ExportBehaviour::kWrites, true,
       "box [Orvane Platform - Error] Package export returned failure. (error) -> ok", "Error."},
      {"FBX claimed but not written", std::nullopt, u"", ExportBehaviour::kWritesNothing, false,
       "box [Orvane Platform - Error] FBX was not created:\n<exchange>/my_scene.v2_" +
           ToUtf8(TickCode(kTicks)) +
           "/my_scene.v2.fbx\n\nPossible reasons:\n\u2022 Exchange Folder is not accessible from "
           "Windows\n\u2022 No write permissions\n\u2022 FBX export settings prohibit export "
           "(error) -> ok",
       "Error."},
      {"V-Ray converted", u"1", u"CONVERTED:3", ExportBehaviour::kWrites, false, "",
       "Done  OK  Objects: 2"},
  };
  for (const auto& c : cases) {
    SetUp();
    vrayConvert_ = c.vray;
    scene_->scriptRules.insert(scene_->scriptRules.begin(),
                               ScriptRule{{u"CONVERTED:"}, false, c.vrayReply});
    scene_->exportBehaviour = c.exportBehaviour;
    if (c.blockPackage) fs::create_directories(JobFolder() / "1.json");
    Send();
    ExpectTrace(c.label);
    std::vector<std::string> boxes = Boxes();
    for (std::string& box : boxes) {
      for (size_t at; (at = box.find(exchange_.string())) != std::string::npos;)
        box.replace(at, exchange_.string().size(), "<exchange>");
    }
    EXPECT_EQ(boxes, c.box.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.box})
        << c.label;
    EXPECT_EQ(ToUtf8(panel_.texts[control::kStatusLine1]), c.status) << c.label;
    EXPECT_TRUE(panel_.enabled[control::kSend]) << c.label;
    EXPECT_EQ(MaterialName("brick"), u"Brick Wall") << c.label;
    EXPECT_TRUE(ScriptRan(u"RESTORED:")) << c.label;
    EXPECT_FALSE(fs::is_regular_file(JobFolder() / "1.json")) << c.label;
  }
}

TEST_F(SendPipeline, TheServiceRefusalsHaveTheirOwnBoxes) {
  const struct {
    const char* label;
    HttpExchange job;
    std::string status, box;
  } cases[] = {
      {"insufficient balance", Replied(402, R"({"error":"insufficient balance"})"),
       "Insufficient balance.",
       "box [Orvane Platform - Balance] Insufficient credits.\nTop up your balance at "
       "https://example/dashboard (none) -> ok"},
      {"refused with a response", Replied(500, R"({"error":"db down"})"), "Send failed (HTTP 500).",
       "box [Orvane Platform - Send Failed] The job was NOT accepted by the server (HTTP 500).\n\n"
       "{\"error\":\"db down\"}\n\nNothing was submitted - check your connection/token and try "
       "again. (error) -> ok"},
      {"refused with none", SendFailed(28), "Send failed (no response).",
       "box [Orvane Platform - Send Failed] The job was NOT accepted by the server (no "
       "response).\n\n"
       "HTTP request failed, GetLastError=28\n\nNothing was submitted - check your "
       "connection/token and try again. (error) -> ok"},
  };
  for (const auto& c : cases) {
    SetUp();
    service_.job = c.job;
    Send();
    ExpectTrace(c.label);
    EXPECT_EQ(ToUtf8(panel_.texts[control::kStatusLine1]), c.status);
    EXPECT_EQ(Boxes(), std::vector<std::string>{c.box});
    EXPECT_TRUE(panel_.enabled[control::kSend]);
    EXPECT_FALSE(fs::exists(JobFolder() / "1.json"));
  }
}

// Only existence is tested: a folder text naming a file passes, and the job folder cannot be
// made, so the export is what fails.
TEST_F(SendPipeline, AFolderTextNamingAFilePassesTheCheckAndFailsLater) {
  std::ofstream(exchange_ / "plain.txt") << "not a folder";
  exchange_ /= "plain.txt";
  panel_.texts[control::kExchangeFolder] = exchange_.u16string();
  Send();
  ExpectTrace("folder text naming a file");
  EXPECT_EQ(panel_.texts[control::kStatusLine1], u"Error.");
  EXPECT_EQ(MaterialName("brick"), u"Brick Wall");
  exchange_ = exchange_.parent_path();
}

// An exception from any step unwinds through the guards: names restored, twins removed, no
// package left behind; the button stays disabled.
TEST_F(SendPipeline, AnExceptionFromAnyStepLeavesTheSceneRestored) {
  int failures = 0;
  for (int failAt = 1;; ++failAt) {
    SetUp();
    FailingFileSystem files(scene_->files, failAt);
    try {
      Send(&files);
    } catch (const std::runtime_error&) {
      ++failures;
      EXPECT_EQ(MaterialName("brick"), u"Brick Wall") << failAt;
      // Twins made are always removed (a failure before they were made leaves none).
      EXPECT_EQ(ScriptRan(u"RESTORED:"), ScriptRan(u"BAKED:")) << failAt;
      EXPECT_FALSE(fs::exists(JobFolder() / "1.json")) << failAt;
      EXPECT_FALSE(panel_.enabled[control::kSend]) << failAt;
      continue;
    }
    break;
  }
  EXPECT_GT(failures, 5);
  SetUp();
  service_.throwOnJob = true;
  EXPECT_THROW(Send(), std::runtime_error);
  EXPECT_EQ(MaterialName("brick"), u"Brick Wall");
  EXPECT_FALSE(fs::exists(JobFolder() / "1.json"));
}

TEST(SendNames, SceneNamesAndTickCodes) {
  const struct {
    std::u16string file, scene;
  } cases[] = {{u"", u"untitled"},
               {u"my:scene.v2.max", u"my_scene.v2"},
               {u"C:\\a\\Loft.max", u"Loft"},
               {u"dir/Cafe*?.max", u"Cafe__"},
               {u"trailing. .max", u"trailing"},
               {u"...max", u"untitled"},
               {u".max", u"untitled"},
               {u"noext", u"noext"}};
  for (const auto& c : cases)
    EXPECT_EQ(SceneNameFromFile(c.file), c.scene) << ToUtf8(c.file);
  EXPECT_EQ(TickCode(0), u"aaaaaaaa");
  EXPECT_EQ(TickCode(35), u"9aaaaaaa");
  EXPECT_EQ(TickCode(36), u"abaaaaaa");
  // Only the lowest eight base-36 digits count.
  uint64_t eightDigits = 36ull * 36 * 36 * 36 * 36 * 36 * 36 * 36;
  EXPECT_EQ(TickCode(eightDigits + 37), TickCode(37));
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

TEST_F(SendPipeline, ASupportSnapshotReplaysToTheSameJob) {
  fs::path support = exchange_ / "support";
  host::memory::SupportSnapshot snapshot(*scene_, scene_->files, support.u16string(), u'/');
  Send(nullptr, &snapshot);
  std::string sent = service_.jobBody;
  std::vector<std::string> statuses = Statuses();
  ASSERT_EQ(panel_.texts[control::kStatusLine1], u"Done  OK  Objects: 2");

  // Beside the job, not in it; named after it.
  fs::path file = support / ("my_scene.v2_" + ToUtf8(TickCode(kTicks)) + ".scene.json");
  ASSERT_TRUE(fs::is_regular_file(file));
  for (const auto& entry : fs::recursive_directory_iterator(JobFolder()))
    EXPECT_FALSE(entry.path().string().ends_with(".scene.json")) << entry.path();

  auto replayed = host::memory::LoadSceneFile(file);
  ASSERT_TRUE(replayed.scene) << replayed.error;
  scene_ = std::move(replayed.scene);
  panel_.events.clear();
  service_.jobBody.clear();
  trees_ = NodeTreeState{};  // as in a fresh session, where support replays
  Send();
  EXPECT_EQ(service_.jobBody, sent);
  EXPECT_EQ(Statuses(), statuses);
  // Copied before the send gave the materials safe names.
  EXPECT_EQ(scene_->materials().front()->GetName(), u"Brick Wall");
}

TEST_F(SendPipeline, ASupportSnapshotNeverStandsInTheSendsWay) {
  // No job begun: nothing to replay, nothing written.
  fs::path support = exchange_ / "support";
  host::memory::SupportSnapshot early(*scene_, scene_->files, support.u16string(), u'/');
  panel_.texts[control::kToken] = u" ";
  Send(nullptr, &early);
  EXPECT_FALSE(fs::exists(support));

  // A folder that cannot be made is reported in the host's log; the send goes through.
  std::ofstream(exchange_ / "blocked") << "a file";
  host::memory::SupportSnapshot blocked(*scene_, scene_->files, (exchange_ / "blocked").u16string(),
                                        u'/');
  panel_.texts[control::kToken] = u"tok";
  Send(nullptr, &blocked);
  EXPECT_EQ(panel_.texts[control::kStatusLine1], u"Done  OK  Objects: 2");
  ASSERT_FALSE(scene_->log.empty());
  EXPECT_EQ(scene_->log.back().type, host::SYSLOG_WARN);
  EXPECT_NE(scene_->log.back().text.find(u"could not be written"), std::u16string::npos);
}

}  // namespace
}  // namespace orvane
