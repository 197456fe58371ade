// What the web cockpit answers, without sockets.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "cockpit/web_files.h"
#include "cockpit_harness.h"

namespace ctl {

// The page is no part of the tests.
std::span<const WebFile> WebFiles() {
  static constexpr WebFile files[] = {{"/", "text/html; charset=utf-8", "<p>", 3},
                                      {"/api", "application/json", "{}", 2}};
  return files;
}
std::string_view OffsetsFile() { return ""; }

}  // namespace ctl

namespace {

using namespace ctl;
using namespace cockpit_tests;
using Json = nlohmann::json;

// Status, and where the refusal points ("" for none).
std::pair<unsigned, std::string> Told(const Outcome& outcome) {
  const Json body = Json::parse(outcome.answer.body, nullptr, false);
  const bool isRefusal = outcome.answer.status >= 400;
  if (isRefusal) {
    EXPECT_FALSE(body.value("error", "").empty() || body.size() != 3) << outcome.answer.body;
  }
  return {outcome.answer.status, isRefusal ? body.value("where", "") : ""};
}

TEST(CockpitAnswers, RefuseWhatIsWrong) {
  const Site site = SiteOf();
  Mirror connected = MirrorOf();
  Mirror replaying = MirrorOf();
  replaying.replay = ReplayState{.file = "x"};
  const Mirror away;
  const std::string names1001 = [] {
    std::string list = "ias";
    for (int i = 0; i < 1000; ++i) list += ",ias";
    return list;
  }();
  const struct {
    const char* method;
    std::string target, body;
    const Mirror& mirror;
    unsigned status;
    const char* where;
  } cases[] = {
      {"GET", "/nothing", "", connected, 404, "path"},
      {"GET", "/api/nothing", "", connected, 404, "path"},
      {"GET", "/../etc/passwd", "", connected, 404, "path"},
      {"GET", "/panels/..%2f..%2fetc%2fpasswd", "", connected, 404, "path"},
      {"DELETE", "/api/values", "", connected, 400, "method"},
      {"POST", "/", "{}", connected, 400, "method"},
      {"HEAD", "/api/stream?names=ias", "", connected, 400, "method"},
      {"GET", "/api/values", "", connected, 400, "names"},
      {"GET", "/api/values?names=", "", connected, 400, "names"},
      {"GET", "/api/values?names=ias,", "", connected, 400, "names"},
      {"GET", "/api/values?names=ias,0x0330:u17", "", connected, 400, "names"},
      {"GET", "/api/values?names=0x1FFFF:u16", "", connected, 400, "names"},
      {"GET", "/api/values?names=ias,heding", "", connected, 404, "names"},
      {"GET", "/api/values?names=" + names1001, "", connected, 413, "names"},
      {"GET", "/api/values?names=0:hex:131072,ias", "", connected, 413, "names"},
      {"GET", "/api/values?names=ias", "", away, 503, "source"},
      {"GET", "/api/stream?names=ias&rate=0.5", "", connected, 400, "rate"},
      {"GET", "/api/stream?names=ias&rate=nan", "", connected, 400, "rate"},
      {"GET", "/api/changes?rate=51", "", connected, 400, "rate"},
      {"GET", "/api/stream?rate=5", "", connected, 400, "names"},
      {"PUT", "/api/values", "x", connected, 400, "body"},
      {"PUT", "/api/values", "[]", connected, 400, "body"},
      {"PUT", "/api/values", R"({"values":[],"wait":1})", connected, 400, "values"},
      {"PUT", "/api/values", R"({"values":[{"name":"ias","value":1}],"x":1})", connected, 400, "body"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear","value":1}],"wait":10.5})", connected, 400, "wait"},
      {"PUT", "/api/values", R"({"values":[1]})", connected, 400, "values[0]"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear","valeu":1}]})", connected, 400, "values[0]"},
      {"PUT", "/api/values", R"({"values":[{"name":7,"value":1}]})", connected, 400, "values[0].name"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear"}]})", connected, 400, "values[0].value"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear","value":[1]}]})", connected, 400, "values[0].value"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear","value":"sideways"}]})", connected, 400,
       "values[0].value"},
      {"PUT", "/api/values", R"({"values":[{"name":"com1","value":18.7}]})", connected, 400, "values[0].value"},
      {"PUT", "/api/values", R"({"values":[{"name":"0x0330:u16","value":65536}]})", connected, 400,
       "values[0].value"},
      {"PUT", "/api/values", R"({"values":[{"name":"heading","value":1,"unit":"kt"}]})", connected, 400,
       "values[0].value"},
      {"PUT", "/api/values", R"({"values":[{"name":"0x0330:u16","value":1,"unit":"kt"}]})", connected, 400,
       "values[0].unit"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear=1","value":1}]})", connected, 404, "values[0].name"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear","value":0},{"name":"gaer","value":0}]})", connected,
       404, "values[1].name"},
      {"PUT", "/api/values", R"({"values":[{"name":"paused","value":1}]})", connected, 403, "values[0].name"},
      {"PUT", "/api/values", R"({"values":[{"name":"0x0263:u16","value":1}]})", connected, 403,
       "values[0].name"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear","value":1}]})", away, 503, "source"},
      {"PUT", "/api/values", R"({"values":[{"name":"gear","value":1}]})", replaying, 409, "source"},
      {"POST", "/api/recording", R"({"file":"a/b"})", connected, 400, "file"},
      {"POST", "/api/recording", R"({"file":"com1.x"})", connected, 400, "file"},
      {"POST", "/api/recording", "{}", connected, 400, "file"},
      {"POST", "/api/recording", R"({"file":"a","x":1})", connected, 400, "body"},
      {"POST", "/api/recording", R"({"file":"a"})", replaying, 409, "source"},
      {"POST", "/api/recording", R"({"file":"a"})", away, 503, "source"},
      {"POST", "/api/replay", R"({"file":"../a"})", connected, 400, "file"},
      {"POST", "/api/replay", R"({"speed":0})", connected, 400, "speed"},
      {"POST", "/api/replay", R"({"position":"x"})", connected, 400, "position"},
      {"POST", "/api/replay", R"({"playing":1})", connected, 400, "playing"},
  };
  for (const auto& row : cases) {
    const Outcome outcome = Answer(RequestOf(row.method, row.target, row.body), site, row.mirror, 0, 11);
    const std::pair<unsigned, std::string> expected = {row.status, row.where};
    EXPECT_EQ(Told(outcome), expected) << row.method << " " << row.target.substr(0, 60) << " " << row.body;
    EXPECT_EQ(outcome.deed, Deed::Reply);
  }
  WebRequest form = RequestOf("PUT", "/api/values");
  form.headers.push_back({"Content-Type", "text/plain"});
  form.body = R"({"values":[{"name":"gear","value":1}]})";
  EXPECT_EQ(Told(Answer(form, site, connected, 0, 11)).second, "Content-Type");
}

TEST(CockpitAnswers, ValuesInTheOrderAsked) {
  Mirror mirror = MirrorOf(WordAt(0x034E, 0x1870));
  ApplyBatch(BatchOf(WordAt(0x0330, 16211)), 12, &mirror);
  const Outcome outcome =
      Answer(RequestOf("GET", "/api/values?names=0x0330:u16,com1,COM1"), SiteOf(), mirror, 0, 12.5);
  const Json values = Json::parse(outcome.answer.body)["values"];
  const Json expected = Json::parse(R"([
    {"name":"0x0330:u16","offset":816,"value":16211,"unit":"","raw":"53 3F","age":0.5},
    {"name":"com1","offset":846,"value":118.7,"unit":"MHz","raw":"70 18","age":2.5},
    {"name":"COM1","offset":846,"value":118.7,"unit":"MHz","raw":"70 18","age":2.5}])");
  EXPECT_EQ(values, expected);
}

TEST(CockpitAnswers, WritesAreEncoded) {
  const struct {
    const char* entry;
    std::vector<uint8_t> bytes;
  } cases[] = {
      {R"({"name":"com1","value":118.7})", {0x70, 0x18}},
      {R"({"name":"com1","value":"118.70 MHz"})", {0x70, 0x18}},
      {R"({"name":"com1","value":118.7,"unit":"MHz"})", {0x70, 0x18}},
      {R"({"name":"gear","value":"down"})", {0xFF, 0x3F, 0, 0}},
      {R"({"name":"pause","value":true})", {1, 0}},
      {R"({"name":"0x0330:u16","value":true})", {1, 0}},
      {R"({"name":"0x0330:hex:2","value":"53 3F"})", {0x53, 0x3F}},
      {R"({"name":"0x0330","value":"hex:53 3F"})", {0x53, 0x3F}},
      {R"({"name":"0x66C0:u64","value":"18446744073709551615"})", std::vector<uint8_t>(8, 0xFF)},
      {R"({"name":"0x66C0:f64","value":-2.5})", {0, 0, 0, 0, 0, 0, 4, 0xC0}},
  };
  for (const auto& row : cases) {
    const std::string body = std::string("{\"wait\":0.5,\"values\":[") + row.entry + "]}";
    const Outcome outcome = Answer(RequestOf("PUT", "/api/values", body), SiteOf(), MirrorOf(), 0, 11);
    ASSERT_EQ(outcome.deed, Deed::Write) << row.entry << outcome.answer.body;
    EXPECT_EQ(outcome.put.items[0].bytes, row.bytes) << row.entry;
    EXPECT_EQ(outcome.put.wait, 0.5);
  }
}

TEST(CockpitAnswers, OffsetsAsInTheFile) {
  const Site site = SiteOf();
  const auto ask = [&site](const std::string& query) {
    return Json::parse(Answer(RequestOf("GET", "/api/offsets" + query), site, Mirror(), 0, 1).answer.body);
  };
  const Json all = ask("");
  std::ifstream file(TAVRIX_SOURCE_DIR "/docs/offsets.json");
  const Json whole = Json::parse(file);
  EXPECT_EQ(all["offsets"], whole["offsets"]);
  EXPECT_EQ(all["version"], whole["version"]);
  const Json heading = ask("?query=HEADING+deg&subject=autopilot");
  ASSERT_GT(heading["offsets"].size(), 0u);
  for (const Json& row : heading["offsets"]) EXPECT_EQ(row["subject"], "Autopilot");
  EXPECT_LT(heading["offsets"].size(), ask("?query=heading")["offsets"].size());
  EXPECT_EQ(ask("?query=nothingatall")["offsets"].size(), 0u);
}

TEST(CockpitAnswers, PanelsAreFilesOfTheFolderAndNothingElse) {
  namespace fs = std::filesystem;
  const fs::path top = fs::path(testing::TempDir()) / "cockpit_panels";
  fs::remove_all(top);
  fs::create_directories(top / "panels" / "inner.html");
  const auto put = [&top](const std::string& name, const std::string& text) {
    std::ofstream(top / name) << text;
  };
  put("secret.html", "secret");
  put("panels/b.html", "<TITLE>\n Two   <&\"words\"\xE9 </title>");
  put("panels/a.HTML", "no title");
  put("panels/c.html", "<!-- <title>No</title> --><title>&lt;A &amp;amp; B&gt; &quot;&#39;&euro;</title>");
  put("panels/.hidden.html", "");
  put("panels/run.exe", "MZ");
  std::error_code fault;
  fs::create_symlink(top / "secret.html", top / "panels" / "link.html", fault);
  Site site = SiteOf();
  site.panels = (top / "panels").string();
  const auto ask = [&site](const std::string& target) {
    return Answer(RequestOf("GET", target), site, Mirror(), 0, 1).answer;
  };
  EXPECT_EQ(ask("/api/panels").body,
            "{\"panels\":[{\"file\":\"a.HTML\",\"title\":\"a.HTML\"},{\"file\":\"b.html\",\"title\":\"Two "
            "<&\\\"words\\\"\\u00E9\"},{\"file\":\"c.html\",\"title\":\"<A &amp; B> \\\"'&euro;\"}]}");
  EXPECT_EQ(ask("/panels/b.html").type, "text/html; charset=utf-8");
  for (const char* name :
       {"../secret.html", "..%2fsecret.html", "%2e%2e/secret.html", "..\\secret.html", "link.html",
        ".hidden.html", "run.exe", "inner.html", "none.html", "", ".", "b.html/", "b.html."}) {
    EXPECT_EQ(ask(std::string("/panels/") + name).status, 404u) << name;
  }
  fs::remove_all(top);
}

TEST(CockpitAnswers, PoliciesFitThePath) {
  const auto header = [](const char* target, const char* name) {
    for (const auto& [key, value] : CommonHeaders(target)) {
      if (key == name) return value;
    }
    return std::string();
  };
  for (const char* target : {"/", "/api/status", "/js/main.js", "/nothing", "/%"}) {
    EXPECT_EQ(header(target, "Content-Security-Policy").find("unsafe"), std::string::npos) << target;
    EXPECT_NE(header(target, "Content-Security-Policy").find("frame-ancestors 'self'"), std::string::npos);
    EXPECT_EQ(header(target, "X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(header(target, "Referrer-Policy"), "no-referrer");
  }
  EXPECT_NE(header("/%70anels/x.html", "Content-Security-Policy").find("'unsafe-inline'"), std::string::npos);
  EXPECT_EQ(header("/%61pi/status?x", "Cache-Control"), "no-store");
}

}  // namespace
