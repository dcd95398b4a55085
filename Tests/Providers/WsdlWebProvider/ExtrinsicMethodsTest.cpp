#include <cstddef>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

// What is expected to be added for a method.
struct Operation {
    const char* name;
    const char* documentation;
};

WSDLFile emptyWsdl() {
    return WSDLFile("TST_Class", "http://host/", "root/tst", "");
}

std::string rendered(const WSDLFile& wsdl) {
    return std::string(std::string_view(wsdl.toString(false)));
}

std::string expected(std::initializer_list<Operation> operations) {
    WSDLFile wsdl = emptyWsdl();
    for (const Operation& operation : operations)
        wsdl.addMessage(operation.name, false, operation.documentation);
    return rendered(wsdl);
}

// What the methods of the class, inherited ones included, are turned into.
std::string renderedMethods(const ModelClass& cimClass) {
    WSDLFile wsdl = emptyWsdl();
    WsdlUtil::enumerateExtrinsicsMethods(cimClass.getMethods(true), wsdl);
    return rendered(wsdl);
}

std::string renderedMethod(const ModelMethod& method) {
    return renderedMethods(ModelClass("TST_Class").method(method));
}

TEST(ExtrinsicMethods, AddsEveryMethodInTheOrderOfTheIterator) {
    EXPECT_EQ(renderedMethods(ModelClass("TST_Class")
                                  .method(ModelMethod("Stop", "uint32"))
                                  .method(ModelMethod("Boot", "uint32"))
                                  .method(ModelMethod("Reset", "uint32"))),
              expected({{"Stop", ""}, {"Boot", ""}, {"Reset", ""}}));
}

TEST(ExtrinsicMethods, AddsWhateverTheIteratorYields) {
    const ModelClass cimClass = ModelClass("TST_Class")
                                    .inheritedMethod(ModelMethod("Inherited", "uint32"))
                                    .method(ModelMethod("Own", "uint32"));
    EXPECT_EQ(renderedMethods(cimClass), expected({{"Inherited", ""}, {"Own", ""}}));

    WSDLFile wsdl = emptyWsdl();
    WsdlUtil::enumerateExtrinsicsMethods(cimClass.getMethods(false), wsdl);
    EXPECT_EQ(rendered(wsdl), expected({{"Own", ""}}));
}

TEST(ExtrinsicMethods, AnIteratorWithoutMethodsAddsNothing) {
    EXPECT_EQ(renderedMethods(ModelClass("TST_Class")), expected({}));
}

TEST(ExtrinsicMethods, WalksTheIteratorToItsEnd) {
    const ModelClass cimClass = ModelClass("TST_Class")
                                    .method(ModelMethod("A", "uint32"))
                                    .method(ModelMethod("B", "uint32"));
    const auto methods = cimClass.getMethods(true);
    WSDLFile wsdl = emptyWsdl();
    WsdlUtil::enumerateExtrinsicsMethods(methods, wsdl);
    EXPECT_FALSE(methods->hasCurrent());

    WsdlUtil::enumerateExtrinsicsMethods(methods, wsdl);
    EXPECT_EQ(rendered(wsdl), expected({{"A", ""}, {"B", ""}}));
}

TEST(ExtrinsicMethods, BeginsWhereTheIteratorStands) {
    const ModelClass cimClass = ModelClass("TST_Class")
                                    .method(ModelMethod("A", "uint32"))
                                    .method(ModelMethod("B", "uint32"));
    const auto methods = cimClass.getMethods(true);
    methods->advance();
    WSDLFile wsdl = emptyWsdl();
    WsdlUtil::enumerateExtrinsicsMethods(methods, wsdl);
    EXPECT_EQ(rendered(wsdl), expected({{"B", ""}}));
}

TEST(ExtrinsicMethods, AddsBehindTheMethodsThatAreThere) {
    const ModelClass cimClass = ModelClass("TST_Class").method(ModelMethod("B", "uint32"));
    WSDLFile wsdl = emptyWsdl();
    wsdl.addMessage("A", false, "First.");
    WsdlUtil::enumerateExtrinsicsMethods(cimClass.getMethods(true), wsdl);
    EXPECT_EQ(rendered(wsdl), expected({{"A", "First."}, {"B", ""}}));
}

TEST(ExtrinsicMethods, TheLastWrittenDescriptionWithAValueIsTheDocumentation) {
    struct Case {
        ModelMethod method;
        const char* documentation;
    };
    const ModelMethod stop("Stop", "uint32");
    const auto with = [](ModelMethod method, const char* name, const char* value) {
        return std::move(method.qualifier(name, value));
    };
    const Case cases[] = {
        {with(stop, "Description", "Stops it."), "Stops it."},
        {with(stop, "description", "Stops it."), "Stops it."},
        {with(stop, "DESCRIPTION", "Stops it."), "Stops it."},
        {with(stop, "Title", "Stops it."), ""},
        {with(stop, "Descriptions", "Stops it."), ""},
        {with(stop, "Descriptio", "Stops it."), ""},
        {with(stop, "The Description", "Stops it."), ""},
        {with(stop, " Description", "Stops it."), ""},
        {with(stop, "", "Stops it."), ""},
        {with(with(with(stop, "Description", "First."), "DESCRIPTION", "Second."), "Title",
              "Third."),
         "Second."},
        {with(with(stop, "Description", "First."), "description", ""), ""},
        {ModelMethod(stop).qualifierWithoutValue("Description"), ""},
        {with(stop, "description", "Stops it.").qualifierWithoutValue("Description"), "Stops it."},
        {ModelMethod(stop).propagatedQualifier("Description", "Stops it."), ""},
        {with(stop, "description", "Stops it.").propagatedQualifier("Description", "Stops all."),
         "Stops it."},
        {ModelMethod(stop).qualifier("Description", true), "true"},
        {with(stop, "Description", " "), " "},
        {with(stop, "Description", "50% <a> %s"), "50% <a> %s"},
    };
    for (std::size_t number = 0; number < std::size(cases); ++number)
        EXPECT_EQ(renderedMethod(cases[number].method),
                  expected({{"Stop", cases[number].documentation}}))
            << "case " << number;
}

TEST(ExtrinsicMethods, AMethodWithoutDescriptionHasNoDocumentation) {
    const std::string whole = renderedMethod(ModelMethod("Stop", "uint32"));
    EXPECT_EQ(whole, expected({{"Stop", ""}}));
    EXPECT_EQ(whole.find("      <wsdl:documentation>"), std::string::npos);
}

TEST(ExtrinsicMethods, AVeryLongDescriptionIsTakenWhole) {
    const std::string description(100'000, 'x');
    EXPECT_EQ(
        renderedMethod(ModelMethod("Stop", "uint32").qualifier("Description", description.c_str())),
        expected({{"Stop", description.c_str()}}));
}

TEST(ExtrinsicMethods, EveryMethodHasTheDocumentationOfItsOwn) {
    EXPECT_EQ(renderedMethods(
                  ModelClass("TST_Class")
                      .qualifier("Description", "The class.")
                      .method(ModelMethod("A", "uint32").qualifier("Description", "Does a."))
                      .method(ModelMethod("B", "uint32"))
                      .method(ModelMethod("C", "uint32").qualifier("Description", "Does c."))),
              expected({{"A", "Does a."}, {"B", ""}, {"C", "Does c."}}));
}

TEST(ExtrinsicMethods, MethodsOfTheSameNameAreAllAdded) {
    EXPECT_EQ(renderedMethods(ModelClass("TST_Class")
                                  .method(ModelMethod("A", "uint32"))
                                  .method(ModelMethod("A", "uint32"))),
              expected({{"A", ""}, {"A", ""}}));
}

TEST(ExtrinsicMethods, MethodsWithAndWithoutParametersAreAddedAlike) {
    EXPECT_EQ(renderedMethods(ModelClass("TST_Class")
                                  .method(ModelMethod("A", "uint32"))
                                  .method(ModelMethod("B", "uint32")
                                              .parameter(ModelParameter("Force", "boolean")
                                                             .qualifier("In")
                                                             .qualifier("Description", "How."))
                                              .parameter(ModelParameter("Delay", "uint8")))),
              expected({{"A", ""}, {"B", ""}}));
}

TEST(ExtrinsicMethods, AFailureOfTheHostPassesAndLeavesOnlyWholeMethods) {
    const ModelClass cimClass =
        ModelClass("TST_Class")
            .method(ModelMethod("A", "uint32")
                        .qualifier("Title", "A")
                        .qualifier("Description", "Does a.")
                        .parameter(ModelParameter("Force", "boolean")))
            .method(ModelMethod("B", "uint32").qualifier("description", "Does b."));
    const std::vector<std::string> possible = {
        expected({}),
        expected({{"A", "Does a."}}),
        expected({{"A", "Does a."}, {"B", "Does b."}}),
    };
    const auto walked = cimClass.getMethods(true);
    WSDLFile whole = emptyWsdl();
    const std::size_t calls =
        HostCalls::count([&] { WsdlUtil::enumerateExtrinsicsMethods(walked, whole); });
    std::optional<CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>>> methods;
    std::optional<WSDLFile> wsdl;
    std::size_t reached = 0;
    std::size_t failuresInside = 0;
    HostCalls::failEach(
        [&] {
            wsdl.reset();
            methods.emplace(cimClass.getMethods(true));
            wsdl.emplace(emptyWsdl());
            WsdlUtil::enumerateExtrinsicsMethods(*methods, *wsdl);
        },
        [&](const std::string& operation) {
            if (!wsdl.has_value())
                return;
            ++failuresInside;
            while (reached < possible.size() && possible[reached] != rendered(*wsdl))
                ++reached;
            EXPECT_LT(reached, possible.size()) << operation << '\n' << rendered(*wsdl);
        });
    EXPECT_EQ(failuresInside, calls);
    EXPECT_EQ(rendered(*wsdl), possible.back());
}

}  // namespace
