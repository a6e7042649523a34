#pragma once

#include "model/ServiceHost.h"
#include "model/Version.h"

/// The fixed values of the application.
namespace zuvo::Constants {

/// Addresses of the account service as built. A program asks `accountAddresses` (platform/ServiceAddresses.h), which
/// lets the user's environment stand in for the host.
namespace API {
/// What the operations' paths are put behind.
inline constexpr const char* baseURL = "https://" ZUVO_SERVICE_HOST "/api/v1";
/// Sends the browser on to zuvo-manager://callback with a token.
inline constexpr const char* authURL =
    "https://" ZUVO_SERVICE_HOST "/plugin-auth?callback=zuvo-manager%3A%2F%2Fcallback";
/// The page on which credits are bought, for the browser.
inline constexpr const char* billingURL = "https://" ZUVO_SERVICE_HOST "/billing";
} // namespace API

namespace App {
/// Of this build, written once in CMakeLists.txt.
inline constexpr const char* version = ZUVO_VERSION;
/// Of the Resolve plugin that ships, and which updates are compared with.
inline constexpr const char* pluginVersion = "0.1.0-beta";
inline constexpr const char* bundleIdentifier = "com.tarnwick.zuvo-manager";
/// The oldest DaVinci Resolve that the plugin is for, as the page names it.
inline constexpr const char* minResolveVersion = "18";
} // namespace App

/// Places that do not depend on who runs the program; those that do are `Environment`'s.
namespace Paths {
/// Where DaVinci Resolve looks for this application's plugin, for every user of the machine.
inline constexpr const char* pluginDirectory = "/Library/Application Support/Blackmagic Design/DaVinci Resolve/"
                                               "Workflow Integration Plugins/com.tarnwick.zuvo";
} // namespace Paths

} // namespace zuvo::Constants
