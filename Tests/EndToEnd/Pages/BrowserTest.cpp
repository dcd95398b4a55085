#include "Tests/EndToEnd/Pages/BrowserTest.h"

#include <cstdlib>
#include <regex>

#include "ObjectManager/Pages/IndexPage.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "Tests/Support/RunningProgram.h"

void BrowserTest::SetUp() {
    if (std::system("command -v chromium > /dev/null") != 0)
        GTEST_SKIP() << "there is no Chromium";
}

std::string BrowserTest::withScript(std::string page, const std::string& script) {
    page.insert(page.find("script-src ") + 11, Pages::sourceHash(script) + " ");
    page.insert(page.find("</body>"), "<script>" + script + "</script>");
    return page;
}

Shown BrowserTest::show(const std::string& page, const std::string& fragment,
                        const std::vector<std::string>& options) const {
    const std::string file = directory_.write("index.html", page);
    std::vector<std::string> command = {"chromium",
                                        "--headless",
                                        "--no-sandbox",
                                        "--disable-gpu",
                                        "--disable-dev-shm-usage",
                                        "--user-data-dir=" + directory_.path("profile"),
                                        "--enable-logging=stderr",
                                        "--virtual-time-budget=5000"};
    command.insert(command.end(), options.begin(), options.end());
    command.insert(command.end(), {"--dump-dom", "file://" + file + fragment});
    const ProgramRun run = RunningProgram(command).waitForEnd();
    EXPECT_EQ(run.end, "status 0") << run.errors;
    Shown shown;
    shown.dom = run.output;
    const std::regex line("[^\n]*CONSOLE[^\n]*\n");
    for (std::sregex_iterator match(run.errors.begin(), run.errors.end(), line), last;
         match != last; ++match)
        shown.console += match->str();
    return shown;
}
