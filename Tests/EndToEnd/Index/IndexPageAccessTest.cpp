// Whether people can read and use the index page on a phone, in the dark and without a mouse, as
// Chromium shows it. Skipped where there is none.

#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/EndToEnd/Index/BrowserTest.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using Names = std::vector<std::string>;

// The parts of a text between "; ".
Names partsOf(const std::string& text) {
    const std::regex separator("; ");
    return {std::sregex_token_iterator(text.begin(), text.end(), separator, -1), {}};
}

// Puts the contrast of each text against what is behind it into the title, as WCAG 2 defines it:
// how many texts there are, the colours of the page, and the texts whose contrast is too low.
constexpr const char* kMeasureContrast = R"(
  const parse = (colour) => colour.match(/[0-9.]+/g).map(Number);
  const luminance = (colour) => {
    const [red, green, blue] = parse(colour).map((value) => value / 255).map((value) =>
      value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4);
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
  };
  const isTransparent = (colour) => parse(colour)[3] === 0;
  const behind = (element) => {
    const colour = getComputedStyle(element).backgroundColor;
    return isTransparent(colour) && element.parentElement ? behind(element.parentElement) : colour;
  };
  const contrast = (one, other) => {
    const [dark, light] = [luminance(one), luminance(other)].sort((a, b) => a - b);
    return (light + 0.05) / (dark + 0.05);
  };
  const hasText = (element) => Array.from(element.childNodes)
    .some((node) => node.nodeType === Node.TEXT_NODE && node.data.trim() !== '');
  const texts = Array.from(document.body.querySelectorAll(':not(script)'))
    .filter((element) => hasText(element))
    .map((element) => [element.localName, getComputedStyle(element).color, behind(element)]);
  const filter = document.getElementById('filter');
  texts.push(['input', getComputedStyle(filter).color, behind(filter)]);
  texts.push(['placeholder', getComputedStyle(filter, '::placeholder').color, behind(filter)]);
  const low = texts.filter(([, colour, ground]) => !(contrast(colour, ground) >= 4.5))
    .map(([name, colour, ground]) => `${name}: ${colour} on ${ground}`);
  const kinds = Array.from(new Set(texts.map(([name]) => name))).sort();
  const isDark = matchMedia('(prefers-color-scheme: dark)').matches;
  document.title = [isDark ? 'dark' : 'light', kinds.join(' '), behind(document.body),
    getComputedStyle(document.body).color, ...low].join('; ');)";

// Puts what the focus may be on, in the order of the page, into the title, and what is wrong with
// the focus there; as soon as the window has the focus, since none is shown in others.
constexpr const char* kMoveFocus = R"(
  const describe = (element) => {
    const style = getComputedStyle(element);
    const ground = getComputedStyle(document.body).backgroundColor;
    const isVisible = element.matches(':focus-visible') && style.outlineStyle === 'solid' &&
      parseFloat(style.outlineWidth) >= 2 && style.outlineColor !== ground;
    return (element.id || element.textContent) + (isVisible ? '' : ' (not visible)') +
      (element.tabIndex === 0 ? '' : ` (tabindex ${element.tabIndex})`);
  };
  const moveFocus = () => {
    const names = [];
    for (const element of document.body.querySelectorAll('*')) {
      element.focus();
      if (document.activeElement === element) names.push(describe(element));
      element.blur();
    }
    document.title = names.join('; ');
  };
  const whenFocused = () => {
    if (document.hasFocus()) moveFocus();
    else setTimeout(whenFocused, 10);
  };
  document.title = 'no focus';
  whenFocused();)";

class IndexPageAccessTest : public BrowserTest {
  protected:
    // What a script puts into the title of the page when the window is so wide. Chromium has no
    // window that narrow, so the page is in a frame, and tells the page around it. Scroll bars take
    // no room on a phone.
    [[nodiscard]] std::string titleInWidth(const std::string& page, int width,
                                           const std::string& script) const {
        directory_.write("framed.html",
                         withScript(page, script + "parent.postMessage(document.title, '*');"));
        return show(
                   "<!DOCTYPE html><title>nothing</title><script>"
                   "addEventListener('message', (event) => { document.title = event.data; });"
                   "</script><body style=\"margin: 0\"><iframe src=\"framed.html\" style=\"border: "
                   "0; height: 800px; width: " +
                       std::to_string(width) + "px\"></iframe>",
                   "", {"--hide-scrollbars"})
            .title();
    }

    // All with the same classes.
    [[nodiscard]] std::string pageOfNamespaces(const Names& names, const std::string& mof) const {
        const std::string file = directory_.write("classes.mof", mof);
        std::vector<Loading::NamespaceSource> sources;
        for (const std::string& name : names)
            sources.push_back({.name = name, .paths = {file}});
        const Loading::LoadedRepository loaded = Loading::loadRepository(sources, {}, {});
        return Index::makeIndexPage(*loaded.repository);
    }

    // What kMoveFocus puts into the title. The time of a page goes faster than that of the window,
    // which may come late with the focus, so it is tried again.
    [[nodiscard]] Names focusOrder(const std::string& page,
                                   const std::string& fragment = "") const {
        const std::string text = withScript(page, kMoveFocus);
        std::string title;
        (void)waitUntil([&] {
            title = show(text, fragment).title();
            return title != "no focus";
        });
        return partsOf(title);
    }

    // With whatever a class can have.
    [[nodiscard]] std::string pageOfTwoClasses() const {
        return Index::makeIndexPage(*load(
            R"(class TST_Thing {}; [Description ("Turns.")] class TST_Disk : TST_Thing {};)"));
    }
};

TEST_F(IndexPageAccessTest, NothingIsWiderThanAPhone) {
    const std::string word(150, 'x');
    const std::string name = "TST_" + word;
    std::string mof = "[Description (\"" + word + " is a word.\")] class " + name + " {};\n";
    mof += "class TST_Other" + word + " : " + name + " {};\n";
    const std::string page = pageOfNamespaces({"root/" + word, word}, mof);
    // And what reaches beyond; rounded, since letters may be wide by a fraction.
    const std::string measure = R"(
        const widest = Array.from(document.body.querySelectorAll('*'))
          .map((element) => [Math.round(element.getBoundingClientRect().right), element.localName])
          .filter(([right]) => right > innerWidth).map((each) => each.join(' '));
        const root = document.documentElement;
        document.title = [innerWidth, root.clientWidth, root.scrollWidth, ...widest].join('; ');)";
    EXPECT_EQ(titleInWidth(page, 320, measure), "320; 320; 320");
    EXPECT_EQ(titleInWidth(page, 390, measure), "390; 390; 390");
    EXPECT_EQ(titleInWidth(page, 810, measure), "810; 810; 810");
}

TEST_F(IndexPageAccessTest, TextsStandOutInLightAndDark) {
    const std::string page = withScript(pageOfTwoClasses(), kMeasureContrast);
    const std::string scheme = "--blink-settings=preferredColorScheme=";
    const std::string kinds = "a h1 h2 i input label output p placeholder small";
    EXPECT_EQ(partsOf(show(page, "", {scheme + "1"}).title()),
              (Names{"light", kinds, "rgb(255, 255, 255)", "rgb(27, 31, 36)"}));
    EXPECT_EQ(partsOf(show(page, "", {scheme + "0"}).title()),
              (Names{"dark", kinds, "rgb(13, 17, 23)", "rgb(230, 237, 243)"}));
}

TEST_F(IndexPageAccessTest, TheFocusGoesThroughThePageInItsOrderAndIsSeen) {
    EXPECT_EQ(focusOrder(pageOfNamespaces({"root/b", "c"}, "class A {};")),
              (Names{"root/b", "c", "filter", "A", "XSD", "A", "XSD"}));
}

TEST_F(IndexPageAccessTest, TheFocusGoesPastWhatIsFilteredOut) {
    EXPECT_EQ(focusOrder(pageOfTwoClasses()),
              (Names{"filter", "TST_Disk", "XSD", "TST_Thing", "XSD"}));
    EXPECT_EQ(focusOrder(pageOfTwoClasses(), "#filter=disk"), (Names{"filter", "TST_Disk", "XSD"}));
}

}  // namespace
