// Shared folders out of the registry, with values as the system writes them and broken ones.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "platform/system.h"

namespace {

constexpr char sharesKey[] = "SYSTEM\\CurrentControlSet\\Services\\lanmanserver\\Shares";

struct Value {
  const char* name;
  DWORD type;
  std::string data;
};

TEST(Shares, TakesTheFolderFromListsThatHaveOne) {
  HKEY key = nullptr;
  if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, sharesKey, 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr,
                      &key, nullptr) != ERROR_SUCCESS) {
    GTEST_SKIP() << "this user may not write the key";
  }
  using namespace std::string_literals;
  const Value values[] = {
      {"tavrix test 1", REG_MULTI_SZ, "MaxUses=1\0Path=C:\\Sim Folder\0Type=0\0\0"s},
      {"tavrix test 2", REG_MULTI_SZ, "PATH=D:\\\0\0"s},
      {"tavrix test 3", REG_MULTI_SZ, "MaxUses=1\0\0"s},
      {"tavrix test 4", REG_SZ, "PATH=C:\\Text\0"s},
      {"tavrix test 5", REG_MULTI_SZ, ""s},
      {"tavrix test 6", REG_MULTI_SZ, "Path=\0\0"s},
  };
  for (const Value& value : values) {
    RegSetValueExA(key, value.name, 0, value.type, reinterpret_cast<const BYTE*>(value.data.data()),
                   static_cast<DWORD>(value.data.size()));
  }
  std::string found;
  std::vector<SharedFolder> folders = ListSharedFolders();
  std::sort(folders.begin(), folders.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  for (const SharedFolder& folder : folders) {
    if (folder.name.starts_with("tavrix test")) found += folder.name + ">" + folder.folder + ";";
  }
  for (const Value& value : values) RegDeleteValueA(key, value.name);
  RegCloseKey(key);
  EXPECT_EQ(found, "tavrix test 1>C:\\Sim Folder;tavrix test 2>D:\\;");
  EXPECT_FALSE(ComputerName().empty());
}

}  // namespace
