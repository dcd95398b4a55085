#include <type_traits>

#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/Util/TSKValSlistIterator.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/RepositoryTest.h"
#include "Tests/Support/Threads.h"

namespace {

class ClassRepositoryTest : public RepositoryTest {
  protected:
    // Two namespaces, which declare a class of the same name otherwise.
    TSKSmrPtr<Repository::ClassRepository> loadTwo() {
        const Loading::LoadedRepository loaded = Loading::loadRepository(
            {{"root/one", {directory_.write("1.mof", "class A_B { uint8 one; }; class A_C {};")}},
             {"root/Two", {directory_.write("2.mof", "class A_B { uint8 two; }; class A_D {};")}}},
            {}, {});
        EXPECT_EQ(directory_.shown(loaded.diagnostics), "");
        return loaded.repository;
    }
};

TEST_F(ClassRepositoryTest, FindsClassesByNamespaceAndNameInAnyCase) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    EXPECT_EQ(propertiesOf(*repository->getClass("root/one", "A_B"), true), "one");
    EXPECT_EQ(propertiesOf(*repository->getClass("ROOT/ONE", "a_b"), true), "one");
    EXPECT_EQ(propertiesOf(*repository->getClass("root/two", "A_b"), true), "two");
}

TEST_F(ClassRepositoryTest, GivesNamesAsTheyAreDeclared) {
    EXPECT_EQ(loadTwo()->getClass("root/one", "a_b")->getName(), "A_B");
}

TEST_F(ClassRepositoryTest, AClassOfAnotherNamespaceIsNotThere) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    EXPECT_FALSE(repository->getClass("root/one", "A_C").isNull());
    EXPECT_TRUE(repository->getClass("root/one", "A_D").isNull());
    EXPECT_TRUE(repository->getClass("root/two", "A_C").isNull());
    EXPECT_TRUE(repository->getClass("root/two", "").isNull());
}

TEST_F(ClassRepositoryTest, AnUnknownNamespaceIsAnErrorWithItsStatusCode) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    for (const char* const name : {"root", "root/three", "root/one/", "/root/one", ""}) {
        try {
            (void)repository->getClass(name, "A_B");
            ADD_FAILURE() << name;
        } catch (const TeskBaseException& error) {
            EXPECT_EQ(error.getErrorCode(), 3);
            EXPECT_EQ(error.getErrorCode(), CIM_ERR_INVALID_NAMESPACE);
            EXPECT_EQ(std::string(error.getMessage().data()),
                      std::string("no such namespace: ") + name);
        }
    }
}

TEST_F(ClassRepositoryTest, ListsItsNamespacesAsGiven) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    const TSKValSlist<TSKString> list = repository->getNamespaceList();
    std::string names;
    TSKValSlistIterator<TSKString> name(list);
    while (name())
        names += std::string(name.key().data()) + " ";
    EXPECT_EQ(names, "root/one root/Two ");
    EXPECT_EQ(repository->namespaces().at(1).name(), "root/Two");
}

TEST_F(ClassRepositoryTest, FindsNamespacesInAnyCase) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    EXPECT_EQ(repository->findNamespace("ROOT/two"), &repository->namespaces().at(1));
    EXPECT_EQ(repository->findNamespace("root/three"), nullptr);
}

TEST_F(ClassRepositoryTest, CountsTheClassesOfAllNamespaces) {
    EXPECT_EQ(loadTwo()->countClasses(), 4U);
    EXPECT_EQ(Repository::ClassRepository({}).countClasses(), 0U);
}

TEST_F(ClassRepositoryTest, HandsOutOneObjectForAClass) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    EXPECT_EQ(repository->getClass("root/one", "A_B"), repository->getClass("ROOT/ONE", "a_b"));
}

TEST_F(ClassRepositoryTest, WhatItHandsOutStaysValidWhenItIsGone) {
    TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    const TSKSmrPtr<ITeskClass> found = repository->getClass("root/two", "A_B");
    const TSKValSlist<TSKString> list = repository->getNamespaceList();
    EXPECT_EQ(repository.owners(), 1);
    repository.reset();
    EXPECT_EQ(propertiesOf(*found, true), "two");
    EXPECT_EQ(list.entries(), 2U);
}

TEST_F(ClassRepositoryTest, MayBeReadByManyThreadsAtOnce) {
    const TSKSmrPtr<Repository::ClassRepository> repository = load(
        "[Note (\"a text that is longer than what is kept in the object\")] class A_Top {\n"
        "[Key] string p; [Key] uint8 M([Key] uint8 q); };\n"
        "class A_Left : A_Top { string p; uint8 M(uint8 q); };\n"
        "class A_Right : A_Top { string r; };");
    constexpr int kThreads = 8;
    std::vector<std::string> read(kThreads);
    runOnThreads(kThreads, [&](int index) {
        for (int round = 0; round < 200; ++round) {
            std::string text;
            for (const char* const name : {"A_Left", "A_Right"}) {
                const TSKSmrPtr<ITeskClass> found = repository->getClass("root/test", name);
                text += propertiesOf(*found, true) + ":" + qualifiersOf(*found, true) + ":" +
                        qualifiersOf(propertyOf(*found, "p"), true) + ":" +
                        qualifiersOf(parameterOf(methodOf(*found, "M"), "q"), true) + ";";
            }
            read[static_cast<std::size_t>(index)] = text;
        }
    });
    const std::string note = ":Note(a text that is longer than what is kept in the object)";
    for (const std::string& text : read) {
        EXPECT_EQ(text, "p" + note + ":Key(true):Key(true);p r" + note + ":Key(true):Key(true);");
    }
}

TEST_F(ClassRepositoryTest, AThreadMayReadWhatAnotherOneDropsTheRepositoryOf) {
    TSKSmrPtr<Repository::ClassRepository> repository = loadTwo();
    std::vector<TSKSmrPtr<ITeskClass>> found(4);
    for (TSKSmrPtr<ITeskClass>& one : found)
        one = repository->getClass("root/one", "A_B");
    runOnThreads(5, [&](int index) {
        if (index == 4) {
            repository.reset();
            return;
        }
        TSKSmrPtr<ITeskClass>& mine = found[static_cast<std::size_t>(index)];
        EXPECT_EQ(propertiesOf(*mine, true), "one");
        mine.reset();
    });
}

TEST_F(ClassRepositoryTest, AFailedAllocationWhileItIsMadeLeavesNothingBehind) {
    const Mof::Compilation compilation = Mof::compile({directory_.write("a.mof", R"(
Qualifier Description : string, Scope (any); Qualifier Values : string[], Scope (any);
[Description ("<a text longer than fifteen>")] class A_B {
    [Values {"x", null}] string p[]; [Values {}] uint8 M([Description (null)] A_B ref q); };
class A_C : A_B { string p[]; uint8 M(A_B ref q); };)")});
    EXPECT_EQ(directory_.shown(compilation.diagnostics), "");
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] {
            std::vector<Repository::CimNamespace> namespaces;
            namespaces.emplace_back("root/a name longer than fifteen",
                                    std::vector(compilation.classes), Repository::Options());
            const Repository::ClassRepository repository(std::move(namespaces));
            EXPECT_EQ(repository.countClasses(), 2U);
        },
        [] {});
    EXPECT_GT(failures, 20U);
}

// Its index refers to its own namespaces.
static_assert(!std::is_copy_constructible_v<Repository::ClassRepository>);
static_assert(!std::is_copy_assignable_v<Repository::ClassRepository>);

}  // namespace
