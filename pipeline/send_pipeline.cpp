#include "pipeline/send_pipeline.h"

#include <optional>
#include <vector>

#include "base/wide_text.h"
#include "package/package_builder.h"
#include "pipeline/fbx_export.h"
#include "pipeline/scene_scripts.h"
#include "prep/material_names.h"
#include "prep/multitexture_bake.h"
#include "prep/texture_collection.h"
#include "service/account_status.h"
#include "service/job_submission.h"

namespace orvane {

namespace {

constexpr std::u16string_view kTitle = u"Orvane Platform";

constexpr std::u16string_view kBakeWarning =
    u"WARNING!\n\nThe scene geometry will be baked:\n  - Ungroup all groups\n  - Convert to "
    u"Editable Poly\n  - Reset XForm\n  - Convert to Editable Poly again\n\nModifier stacks are "
    u"collapsed. These operations modify the scene and cannot be undone.\nDo not save the scene "
    u"after export!\n\nContinue?";

// Runs the spline restore when the send ends, however it ends, if twins were made.
class SplineGuard {
 public:
  SplineGuard(host::Interface& scene, int32_t count) : scene_(scene), count_(count) {}
  ~SplineGuard() {
    if (count_ > 0) RunSplineRestore(scene_);
  }
  SplineGuard(const SplineGuard&) = delete;
  SplineGuard& operator=(const SplineGuard&) = delete;

 private:
  host::Interface& scene_;
  int32_t count_;
};

class Send {
 public:
  explicit Send(SendContext& context) : c_(context), panel_(context.panel) {}
  ~Send() {
    if (c_.observer != nullptr) c_.observer->SendEnded(jobName_);
  }
  Send(const Send&) = delete;
  Send& operator=(const Send&) = delete;

  void Run() {
    std::optional<std::u16string> token = CheckToken();
    if (!token || !CheckFolder()) return;
    panel_.Enable(control::kSend, false);
    panel_.SetText(control::kStatusLine2, u"");
    SplineGuard splines(c_.scene, RunSplineCopies(c_.scene));
    if (panel_.IsChecked(control::kBakeGeometry)) {
      MessageAnswer answer = panel_.ShowMessage(u"Bake Geometry", kBakeWarning,
                                                MessageIcon::kWarning, MessageButtons::kYesNo);
      if (answer != MessageAnswer::kYes) {
        Reenable();
        Progress(0, u"Ready.", false);
        return;
      }
      RunGeometryBake(c_.scene);
    }
    Prepare(*token);
  }

 private:
  void Progress(int percent, std::u16string_view text, bool animate = true) {
    SetProgress(panel_, c_.state, percent, text, animate);
  }
  void Say(std::u16string_view text) {
    panel_.ShowMessage(kTitle, text, MessageIcon::kNone, MessageButtons::kOk);
  }
  void Fail(std::u16string_view message) {
    ShowError(panel_, c_.state, message);
    Reenable();
  }
  void Reenable() { panel_.Enable(control::kSend, true); }

  std::optional<std::u16string> CheckToken() {
    std::u16string token = TrimWhitespace(panel_.GetText(control::kToken));
    if (token.empty()) {
      Say(u"Invalid token.\nEnter your token from " + c_.dashboardUrl);
      return std::nullopt;
    }
    AccountStatus status = QueryAccountStatus(c_.http, c_.serviceUrl, token);
    if (!status.ok) {
      if (status.error == u"invalid_token" || status.error == u"token_empty") {
        Say(u"Invalid token.\nUpdate your token at " + c_.dashboardUrl);
      } else {
        Say(u"Cannot connect to server:\n" + status.error);
      }
      return std::nullopt;
    }
    // A reached daily limit does not stop the send: the service decides.
    panel_.SetText(control::kBalance, BalanceText(status));
    return token;
  }

  bool CheckFolder() {
    folder_ = panel_.GetText(control::kExchangeFolder);
    if (folder_.empty()) {
      Say(u"Select an Exchange Folder.");
      return false;
    }
    // Only existence is tested: a file of that name passes, and the job folder then fails
    // quietly to appear.
    if (!c_.files.Exists(folder_)) {
      Say(u"Folder does not exist:\n" + folder_);
      return false;
    }
    return true;
  }

  void Prepare(const std::u16string& token) {
    Progress(8, u"Preparing job folder...");
    std::u16string sceneName = SceneNameFromFile(c_.scene.GetCurFileName());
    jobName_ = sceneName + u"_" + TickCode(c_.tickCount());
    std::u16string jobFolder = folder_ + c_.separator + jobName_;
    c_.files.CreateDirectory(jobFolder);
    c_.files.CreateDirectory(jobFolder + c_.separator + u"textures");

    Progress(12, u"Baking MultiTexture vertex colors...");
    BakeMultiTextureVC(c_.scene);

    Progress(15, u"Checking for V-Ray materials...");
    VRayCheckResult vray = RunVRayCheck(c_.scene, c_.environment);
    if (vray.attempted && !vray.succeeded && !vray.error.empty()) {
      return Fail(u"V-Ray conversion failed:\n" + vray.error);
    }
    if (vray.attempted && vray.succeeded) {
      Progress(17, u"V-Ray converted: " + Decimal(vray.converted) + u" objects");
    }

    if (c_.observer != nullptr) c_.observer->SceneReady();

    Progress(20, u"Deduplicating material names...");
    std::vector<MtlRestoreEntry> renames = DeduplicateMaterialNames(c_.scene);
    // The names come back before anything is reported, and also when a step throws.
    struct NameRestore {
      host::Interface& scene;
      const std::vector<MtlRestoreEntry>& list;
      bool done = false;
      void Now() {
        if (!done) RestoreMaterialNames(scene, list);
        done = true;
      }
      ~NameRestore() { Now(); }
    } names{c_.scene, renames};

    Progress(25, u"Exporting FBX...");
    std::u16string fbxPath =
        jobFolder + c_.separator + SceneNameFromFile(c_.scene.GetCurFileName()) + u".fbx";
    std::u16string message;
    if (!ExportFbx(c_.scene, c_.files, fbxPath, message)) {
      names.Now();
      return Fail(message);
    }

    Progress(40, u"Collecting textures...");
    TextureCollectResult textures = CollectTextures(c_.scene, c_.files, jobFolder);
    std::u16string summary = u"Textures: " + Decimal(textures.copied);
    if (!textures.missing.empty()) {
      summary += u"  (" + Decimal(static_cast<int64_t>(textures.missing.size())) + u" missing)";
    }
    Progress(55, summary);

    Progress(65, u"Building Package...");
    std::u16string packagePath = jobFolder + c_.separator + u"1.json";
    // 1.json leaves the job folder whatever happens from here on.
    struct PackageRemoval {
      host::FileSystem& files;
      std::u16string path;
      bool done = false;
      void Now() {
        if (!done) files.DeleteFile(path);
        done = true;
      }
      ~PackageRemoval() { Now(); }
    } removal{c_.files, packagePath};
    BuildResult built = BuildPackage(WriteContext{c_.scene, c_.scene.GetTime()}, c_.files,
                                     c_.nodeTrees, packagePath);
    names.Now();
    if (!built.success) return Fail(u"Package export returned failure.");
    Progress(78, u"Package ready. Objects: " + Decimal(built.objectCount));

    Progress(88, u"Sending to server...");
    HttpResult sent = SubmitJob(c_.http, c_.files, c_.serviceUrl, packagePath, token, jobName_,
                                BlenderTargetOf(panel_));
    removal.Now();
    Report(sent, built.objectCount, jobName_);
    Reenable();
  }

  void Report(const HttpResult& sent, int32_t objectCount, const std::u16string& jobName) {
    if (sent.ok) {
      Progress(100, u"Done  OK  Objects: " + Decimal(objectCount), false);
      panel_.SetText(control::kStatusLine2, u"Job: " + jobName);
      return;
    }
    if (sent.text.find(u"insufficient balance") != std::u16string::npos) {
      Progress(100, u"Insufficient balance.", false);
      panel_.ShowMessage(u"Orvane Platform - Balance",
                         u"Insufficient credits.\nTop up your balance at " + c_.dashboardUrl,
                         MessageIcon::kNone, MessageButtons::kOk);
      return;
    }
    std::u16string reason = sent.status < 1 ? u"no response" : u"HTTP " + Decimal(sent.status);
    Progress(100, u"Send failed (" + reason + u").", false);
    panel_.ShowMessage(u"Orvane Platform - Send Failed",
                       u"The job was NOT accepted by the server (" + reason + u").\n\n" +
                           sent.text +
                           u"\n\nNothing was submitted - check your connection/token and try "
                           u"again.",
                       MessageIcon::kError, MessageButtons::kOk);
  }

  SendContext& c_;
  PanelView& panel_;
  std::u16string folder_;
  std::u16string jobName_;
};

}  // namespace

std::u16string SceneNameFromFile(std::u16string_view fileName) {
  size_t separator = fileName.find_last_of(u"\\/");
  std::u16string name(separator == std::u16string_view::npos ? fileName
                                                             : fileName.substr(separator + 1));
  size_t dot = name.rfind(u'.');
  if (dot != std::u16string::npos) name.resize(dot);
  if (name.empty()) return u"untitled";
  for (char16_t& c : name) {
    if (c < 32 || std::u16string_view(u"\"*/:<>?\\|").find(c) != std::u16string_view::npos) {
      c = u'_';
    }
  }
  while (!name.empty() && (name.back() == u'.' || name.back() == u' '))
    name.pop_back();
  return name.empty() ? u"untitled" : name;
}

std::u16string TickCode(uint64_t counter) {
  static constexpr char16_t kDigits[] = u"abcdefghijklmnopqrstuvwxyz0123456789";
  std::u16string code;
  for (int i = 0; i < 8; ++i, counter /= 36)
    code += kDigits[counter % 36];
  return code;
}

void RunSendPipeline(SendContext& context) {
  Send(context).Run();
}

}  // namespace orvane
