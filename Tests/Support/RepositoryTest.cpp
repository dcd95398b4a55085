#include "Tests/Support/RepositoryTest.h"

#include <stdexcept>

namespace {

constexpr const char* kQualifiers = R"(
Qualifier Key : boolean = false, Scope (any), Flavor (DisableOverride, ToSubclass);
Qualifier Note : string = "default", Scope (any), Flavor (EnableOverride, ToSubclass);
Qualifier Version : string, Scope (any), Flavor (Restricted);
Qualifier Plain : string, Scope (any);
Qualifier Values : string[], Scope (any);
Qualifier Description : string, Scope (any), Flavor (ToSubclass, Translatable);
)";

}  // namespace

TSKSmrPtr<Repository::ClassRepository> RepositoryTest::load(
    const std::string& mof, const Repository::Options& options) const {
    const std::vector<std::string> files = {directory_.write("q.mof", kQualifiers),
                                            directory_.write("a.mof", mof)};
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{.name = "root/test", .paths = files}}, {}, options);
    EXPECT_EQ(directory_.shown(loaded.diagnostics), "");
    if (!loaded.repository)
        throw std::invalid_argument("the text of the test has errors");
    return loaded.repository;
}

TSKSmrPtr<ITeskClass> RepositoryTest::classOf(const std::string& mof, const char* name,
                                              const Repository::Options& options) const {
    TSKSmrPtr<ITeskClass> found = load(mof, options)->getClass("root/test", name);
    if (!found)
        throw std::out_of_range(name);
    return found;
}
