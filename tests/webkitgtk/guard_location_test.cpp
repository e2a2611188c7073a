// Where the engine finds its web-process module: which place wins, which
// directories are refused and why, and the one warning that names every
// place looked at when none will do.

#include "GuardLocation.hpp"
#include "HeaderGuard.hpp"
#include "websdk/Log.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <glib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace websdk::webkitgtk::guard {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr char kVariable[] = "WEBSDK_WEB_EXTENSIONS_DIR";

class GuardLocation : public ::testing::Test {
 protected:
  void SetUp() override {
    gchar* root = g_dir_make_tmp("websdk-guard-XXXXXX", nullptr);
    ASSERT_NE(root, nullptr);
    root_ = root;
    g_free(root);
    g_unsetenv(kVariable);
    previous_ = setLogSink([this](const LogRecord& r) {
      if (r.level == LogLevel::warning) warnings.emplace_back(r.message);
    });
  }
  void TearDown() override {
    setLogSink(std::move(previous_));
    g_unsetenv(kVariable);
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }

  // A fresh directory (a new name: answers are kept per input) holding the
  // module when `withModule`.
  std::string directory(const std::string& name, bool withModule = true) {
    const fs::path dir = root_ / name;
    fs::create_directories(dir);
    fs::permissions(dir, fs::perms(0755));
    if (withModule) std::ofstream(dir / kModule) << "not loaded by the lookup";
    return dir.string();
  }

  fs::path root_;
  LogSink previous_;
  std::vector<std::string> warnings;
};

TEST_F(GuardLocation, TheVariableComesBeforeTheConfiguredDirectory) {
  const std::string named = directory("named"), configured = directory("configured");
  g_setenv(kVariable, named.c_str(), TRUE);
  EXPECT_EQ(moduleDirectory(configured), named);
  EXPECT_TRUE(warnings.empty());
}

TEST_F(GuardLocation, WhenTheVariableIsSetNoOtherPlaceIsTried) {
  const std::string named = directory("named", false), configured = directory("configured");
  g_setenv(kVariable, named.c_str(), TRUE);
  EXPECT_EQ(moduleDirectory(configured), std::nullopt);
  ASSERT_EQ(warnings.size(), 1u);
  EXPECT_THAT(warnings[0], HasSubstr(std::string(kVariable) + " " + named + " (no libwebsdk-header-guard.so in it)"));
  EXPECT_THAT(warnings[0], HasSubstr("the app's headers are not sent"));
  EXPECT_THAT(warnings[0], Not(HasSubstr(configured)));
}

TEST_F(GuardLocation, TheConfiguredDirectoryComesBeforeTheInstalledAndBuiltOnes) {
  const std::string configured = directory("configured");
  EXPECT_EQ(moduleDirectory(configured), configured);
  EXPECT_TRUE(warnings.empty());
}

TEST_F(GuardLocation, AnUnusableConfiguredDirectoryFallsBackToTheBuildTree) {
  if (!refusal(WEBSDK_WEB_EXTENSIONS_INSTALL_DIR))
    GTEST_SKIP() << "a module is installed in " WEBSDK_WEB_EXTENSIONS_INSTALL_DIR;
  EXPECT_EQ(moduleDirectory(directory("configured", false)), WEBSDK_WEB_EXTENSIONS_BUILD_DIR);
  EXPECT_EQ(moduleDirectory(""), WEBSDK_WEB_EXTENSIONS_BUILD_DIR);
  EXPECT_TRUE(warnings.empty());
}

TEST_F(GuardLocation, ARelativeDirectoryIsMadeAbsolute) {
  // WebKit's web processes need not run where this process does.
  directory("relative");
  const fs::path before = fs::current_path();
  fs::current_path(root_);
  g_setenv(kVariable, "relative", TRUE);
  const auto found = moduleDirectory("");
  fs::current_path(before);
  EXPECT_EQ(found, (root_ / "relative").string());
}

// Each refused directory is named with its reason, and nothing is used.
TEST_F(GuardLocation, UnsafeOrIncompleteDirectoriesAreRefused) {
  struct Case {
    std::string directory, reason;
  };
  std::vector<Case> cases;
  const std::string shared = directory("shared");
  fs::permissions(shared, fs::perms(0777));
  cases.push_back({shared, "anyone may write to it"});
  const std::string hollow = directory("hollow", false);
  fs::create_directory(fs::path(hollow) / kModule);
  cases.push_back({hollow, "no libwebsdk-header-guard.so in it"});
  const std::string file = (root_ / "file").string();
  std::ofstream(file) << "";
  cases.push_back({file, "not a directory"});
  cases.push_back({(root_ / "missing").string(), ""});
  if (getuid() == 0) {
    const std::string foreign = directory("foreign");
    ASSERT_EQ(chown(foreign.c_str(), 65534, 65534), 0);
    cases.push_back({foreign, "owned by another user"});
  }
  for (const auto& c : cases) {
    warnings.clear();
    g_setenv(kVariable, c.directory.c_str(), TRUE);
    EXPECT_EQ(moduleDirectory(""), std::nullopt) << c.directory;
    ASSERT_EQ(warnings.size(), 1u) << c.directory;
    EXPECT_THAT(warnings[0], HasSubstr(c.directory + " (" + c.reason)) << c.directory;
  }
}

TEST_F(GuardLocation, EachInputWarnsOnce) {
  const std::string first = directory("first", false), second = directory("second", false);
  g_setenv(kVariable, first.c_str(), TRUE);
  for (int view = 0; view < 3; ++view) EXPECT_EQ(moduleDirectory(""), std::nullopt);
  EXPECT_EQ(warnings.size(), 1u);
  g_setenv(kVariable, second.c_str(), TRUE);
  EXPECT_EQ(moduleDirectory(""), std::nullopt);
  ASSERT_EQ(warnings.size(), 2u);
  EXPECT_THAT(warnings[1], HasSubstr(second));
}

TEST_F(GuardLocation, WithNothingUsableTheWarningNamesEveryPlaceInOrder) {
  const std::string missing = (root_ / "missing").string(), shared = directory("shared");
  fs::permissions(shared, fs::perms(0777));
  const Lookup found = lookUp({{"the first place", missing}, {"the second place", shared}, {"the third place", ""}});
  EXPECT_EQ(found.directory, std::nullopt);
  const auto first = found.warning.find("the first place " + missing + " (");
  const auto second = found.warning.find("the second place " + shared + " (anyone may write to it)");
  const auto third = found.warning.find("the third place (not set)");
  ASSERT_NE(first, std::string::npos) << found.warning;
  ASSERT_NE(second, std::string::npos) << found.warning;
  ASSERT_NE(third, std::string::npos) << found.warning;
  EXPECT_LT(first, second);
  EXPECT_LT(second, third);
  EXPECT_THAT(found.warning, HasSubstr(kVariable));
  EXPECT_THAT(found.warning, HasSubstr("the app's headers are not sent"));
}

TEST_F(GuardLocation, TheFirstUsablePlaceIsTaken) {
  const std::string hollow = directory("hollow", false), first = directory("first"), second = directory("second");
  EXPECT_EQ(lookUp({{"a", hollow}, {"b", first}, {"c", second}}).directory, first);
}

}  // namespace
}  // namespace websdk::webkitgtk::guard
