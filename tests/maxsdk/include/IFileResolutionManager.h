// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

namespace MaxSDK::AssetManagement {
enum AssetType { kOtherAsset = 0, kBitmapAsset = 1, kXRefAsset = 2, kPhotometricAsset = 3 };
}  // namespace MaxSDK::AssetManagement

class IFileResolutionManager {
 public:
  static IFileResolutionManager* GetInstance();
  virtual MSTR GetFullFilePath(const MCHAR* filePath, MaxSDK::AssetManagement::AssetType assetType,
                               bool byPassCache = false) = 0;
};
