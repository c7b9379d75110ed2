// Build constants of the plug-in: the name the host shows, the version, the
// build kind and the number of host image buffers a frame needs.
#pragma once

constexpr const char* kPluginName = "Zel-Straightlux";
constexpr const char* kMakerName = "Marrowby";
constexpr const char* kFrameworkName = "Halvane";
constexpr const char* kPluginVersion = "1.2";
constexpr const char* kPluginMinorVersion = "1";
constexpr const char* kHostVersionText = " ";
constexpr const char* kBuildDate = "Oct 15 2008";
constexpr const char* kBuildTime = "14:33:51";

// Build kinds named in the banner.
constexpr int kBuildKindNative = 0;
constexpr int kBuildKindUcapi = 1;
constexpr int kBuildKind = kBuildKindUcapi;

constexpr int kBuffersNeeded8 = 2;   // 8/10-bit mode
constexpr int kBuffersNeeded12 = 2;  // 12-bit mode

// Lowest host interface version the plug-in is made for.
constexpr float kMinimumApiVersion = 4.0f;
