// Who may use the web cockpit, and what its requests may name.
#include "cockpit_harness.h"

namespace {

using namespace ctl;
using namespace cockpit_tests;

TEST(CockpitRules, TakesTargetsApart) {
  const struct {
    const char* text;
    bool isGood;
    const char* path;
    Pairs query;
  } cases[] = {
      {"/", true, "/", {}},
      {"/api/values?names=a%2Cb,c&x", true, "/api/values", {{"names", "a,b,c"}, {"x", ""}}},
      {"/a%20b+c?q=a+b%2B&&=1", true, "/a b+c", {{"q", "a b+"}, {"", "1"}}},
      {"/%2e%2E/x?", true, "/../x", {}},
      {"http://127.0.0.1/", false, "", {}},
      {"", false, "", {}},
      {"*", false, "", {}},
      {"/%", false, "", {}},
      {"/%4", false, "", {}},
      {"/%zz", false, "", {}},
      {"/a%00b", false, "", {}},
      {"/?a=%0", false, "", {}},
  };
  for (const auto& row : cases) {
    Target target;
    ASSERT_EQ(ReadTarget(row.text, &target), row.isGood) << row.text;
    if (!row.isGood) continue;
    EXPECT_EQ(target.path, row.path);
    EXPECT_EQ(target.query, row.query) << row.text;
  }
}

TEST(CockpitRules, RefusesForeignHostsAndOrigins) {
  const Site site = SiteOf();
  const struct {
    Pairs headers;
    unsigned status;  // 0: let in
  } cases[] = {
      {{{"Host", "127.0.0.1:8440"}}, 0},
      {{{"hOST", "LocalHost:8440"}}, 0},
      {{{"Host", "[::1]:8440"}}, 0},
      {{{"Host", "SimPC:8440"}, {"Origin", "http://simpc:8440"}}, 0},
      {{}, 400},
      {{{"Host", "127.0.0.1:8440"}, {"Host", "127.0.0.1:8440"}}, 400},
      {{{"Host", ""}}, 403},
      {{{"Host", "127.0.0.1"}}, 403},
      {{{"Host", "127.0.0.1:80"}}, 403},
      {{{"Host", "127.0.0.1:18440"}}, 403},
      {{{"Host", "evil.example:8440"}}, 403},
      {{{"Host", "127.0.0.1.evil.example:8440"}}, 403},
      {{{"Host", "127.0.0.1:8440"}, {"Origin", "http://evil.example"}}, 403},
      {{{"Host", "127.0.0.1:8440"}, {"Origin", "http://localhost:8440"}}, 403},
      {{{"Host", "127.0.0.1:8440"}, {"Origin", "https://127.0.0.1:8440"}}, 403},
      {{{"Host", "127.0.0.1:8440"}, {"Origin", "http://127.0.0.1:9000"}}, 403},
      {{{"Host", "127.0.0.1:8440"}, {"Origin", "null"}}, 403},
      {{{"Host", "127.0.0.1:8440"}, {"Origin", "http://127.0.0.1:8440"}, {"Origin", "http://evil.example"}},
       403},
  };
  for (const auto& row : cases) {
    Refusal refusal = {};
    const WebRequest request = {"GET", "/", row.headers, ""};
    const std::string shown =
        row.headers.empty() ? "none" : row.headers[0].second + " " + row.headers.back().second;
    EXPECT_EQ(IsFromHere(request, site.access, &refusal), row.status == 0) << shown;
    EXPECT_EQ(refusal.status, row.status) << shown;
    const Outcome outcome = Answer(request, site, MirrorOf(), 0, 11);
    EXPECT_EQ(outcome.answer.status == 400 || outcome.answer.status == 403, row.status != 0) << shown;
  }
}

TEST(CockpitRules, AsksForTheToken) {
  const std::string token = "right-token.1~_";
  const Site site = SiteOf(token);
  const struct {
    const char* name;
    std::string value;
    bool isLetIn;
  } cases[] = {
      {"Authorization", "Bearer " + token, true},
      {"authorization", "bearer " + token, true},
      {"Cookie", "a=1; tavrix_token=" + token + "; b=2", true},
      {"Cookie", "tavrix_token=wrong; tavrix_token=" + token, true},
      {"X-Other", token, false},
      {"Authorization", token, false},
      {"Authorization", "Bearer", false},
      {"Authorization", "Bearer " + token + "x", false},
      {"Authorization", "Bearer right-token.1~", false},
      {"Authorization", "Bearer right-token.1~x", false},
      {"Cookie", "tavrix_token=", false},
      {"Cookie", "xtavrix_token=" + token, false},
      {"Cookie", "tavrix_token", false},
  };
  for (const auto& row : cases) {
    for (const char* target : {"/api/status", "/", "/panels/x.html", "/tavrix.js"}) {
      WebRequest request = RequestOf("GET", target);
      request.headers.push_back({row.name, row.value});
      EXPECT_EQ(Answer(request, site, MirrorOf(), 0, 11).answer.status != 403, row.isLetIn)
          << row.value << target;
    }
  }
  const WebAnswer entry = Answer(RequestOf("GET", "/?token=" + token), site, MirrorOf(), 0, 11).answer;
  EXPECT_EQ(entry.status, 303u);
  const Pairs expected = {{"Location", "/"},
                          {"Set-Cookie", "tavrix_token=" + token + "; SameSite=Strict; HttpOnly; Path=/"}};
  EXPECT_EQ(entry.headers, expected);
  EXPECT_EQ(Answer(RequestOf("GET", "/?token=wrong-token"), site, MirrorOf(), 0, 11).answer.status, 403u);
  EXPECT_EQ(Answer(RequestOf("GET", "/api/status?token=" + token), site, MirrorOf(), 0, 11).answer.status,
            403u);
  for (const char* text : {"1234567", "12345678 ", "12345678;", "äöüäöü"}) EXPECT_FALSE(IsToken(text)) << text;
  EXPECT_TRUE(IsToken("aZ0._~-8") && IsToken(std::string(128, 'a')) && !IsToken(std::string(129, 'a')));
}

TEST(CockpitRules, TakesWholeAddresses) {
  const char* cases[][2] = {{"http://127.0.0.1:8440/api?x", "/api?x"},
                            {"HTTP://127.0.0.1:8440", "/"},
                            {"http://127.0.0.1:8440?token=x", "/?token=x"},
                            {"http://127.0.0.1:84400/", "http://127.0.0.1:84400/"},
                            {"http://127.0.0.1/", "http://127.0.0.1/"},
                            {"https://127.0.0.1:8440/", "https://127.0.0.1:8440/"},
                            {"/http://127.0.0.1:8440/", "/http://127.0.0.1:8440/"}};
  for (const auto& [target, left] : cases) {
    WebRequest request = RequestOf("GET", target);
    DropOwnHost(&request);
    EXPECT_EQ(request.target, left);
  }
}

TEST(CockpitRules, KnowsFileNames) {
  for (const char* name : {"a", "flight 1.tavrec", "A-b_c.2", "com0x", "console.txt"})
    EXPECT_TRUE(IsFileName(name)) << name;
  for (const char* name : {"",         ".",   "..",      ".hidden",     "a/b",  "a\\b",   "../a", "c:a",
                           "a:stream", "con", "NUL.txt", "Com1.tavrec", "lpt9", "aux .x", "a.",   "a ",
                           " a",       "ä",   "a\n",     "a%2e",        "~",    "$I30"}) {
    EXPECT_FALSE(IsFileName(name)) << name;
  }
  EXPECT_FALSE(IsFileName(std::string(101, 'a')));
  EXPECT_FALSE(IsFileName(std::string_view("a\0b", 3)));
  EXPECT_EQ(TypeOfFile("X.PNG"), "image/png");
  EXPECT_EQ(TypeOfFile("a.html.exe"), "");
}

}  // namespace
