#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Pages/IndexPage.h"
#include "Tests/EndToEnd/Pages/Shown.h"
#include "Tests/Support/RepositoryTest.h"

/// Shows pages in Chromium, without a window. Its tests are skipped where there is none.
class BrowserTest : public RepositoryTest {
  protected:
    void SetUp() override;

    /// An index page with a script of the test at its end, which the policy of the page allows.
    [[nodiscard]] static std::string withScript(std::string page, const std::string& script);

    /// `fragment` is the end of the address, such as "#filter=a"; `options` are more of Chromium's.
    [[nodiscard]] Shown show(const std::string& page, const std::string& fragment = "",
                             const std::vector<std::string>& options = {}) const;
};
