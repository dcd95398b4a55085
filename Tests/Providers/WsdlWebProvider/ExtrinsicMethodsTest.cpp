#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

using Calls = std::vector<std::string>;

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

// The calls that turning the methods of the class makes.
Calls callsFor(const ModelClass& cimClass) {
    WSDLFile wsdl = emptyWsdl();
    const auto methods = cimClass.getMethods(true);
    const HostCalls::Recording recording;
    WsdlUtil::enumerateExtrinsicsMethods(methods, wsdl);
    return recording.calls();
}

Calls callsFor(const ModelMethod& method) {
    return callsFor(ModelClass("TST_Class").method(method));
}

// How a single call is recorded.
template <typename Call>
std::string recorded(const Call& call) {
    const HostCalls::Recording recording;
    call();
    return recording.calls().at(0);
}

std::ptrdiff_t countOf(const Calls& calls, const std::string& call) {
    return std::count(calls.begin(), calls.end(), call);
}

std::string operationOf(const std::string& call) {
    return call.substr(0, call.find(' '));
}

// How many calls are of the operation of `call`, whatever it is called with.
std::ptrdiff_t countLike(const Calls& calls, const std::string& call) {
    return std::count_if(calls.begin(), calls.end(), [&](const std::string& other) {
        return operationOf(other) == operationOf(call);
    });
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

TEST(ExtrinsicMethods, TheDescriptionIsTheDocumentation) {
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32").qualifier("Description", "Stops it.")),
              expected({{"Stop", "Stops it."}}));
}

TEST(ExtrinsicMethods, ADescriptionCountsInAnyCase) {
    for (const char* const name : {"description", "DESCRIPTION", "dEsCrIpTiOn"})
        EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32").qualifier(name, "Stops it.")),
                  expected({{"Stop", "Stops it."}}));
}

TEST(ExtrinsicMethods, OtherQualifiersAreNoDocumentation) {
    for (const char* const name :
         {"Title", "Descriptions", "Descriptio", "The Description", " Description", ""})
        EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32").qualifier(name, "Stops it.")),
                  expected({{"Stop", ""}}))
            << name;
}

TEST(ExtrinsicMethods, AMethodWithoutDescriptionHasNoDocumentation) {
    const std::string whole = renderedMethod(ModelMethod("Stop", "uint32"));
    EXPECT_EQ(whole, expected({{"Stop", ""}}));
    EXPECT_EQ(whole.find("      <wsdl:documentation>"), std::string::npos);
}

TEST(ExtrinsicMethods, TheLastOfSeveralDescriptionsWins) {
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32")
                                 .qualifier("Description", "First.")
                                 .qualifier("DESCRIPTION", "Second.")
                                 .qualifier("Title", "Third.")),
              expected({{"Stop", "Second."}}));
}

TEST(ExtrinsicMethods, AnEmptyLastDescriptionTakesTheDocumentationAway) {
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32")
                                 .qualifier("Description", "First.")
                                 .qualifier("description", "")),
              expected({{"Stop", ""}}));
}

TEST(ExtrinsicMethods, ADescriptionWithoutValueIsIgnored) {
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32").qualifierWithoutValue("Description")),
              expected({{"Stop", ""}}));
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32")
                                 .qualifier("description", "Stops it.")
                                 .qualifierWithoutValue("Description")),
              expected({{"Stop", "Stops it."}}));
}

TEST(ExtrinsicMethods, APropagatedDescriptionIsIgnored) {
    EXPECT_EQ(renderedMethod(
                  ModelMethod("Stop", "uint32").propagatedQualifier("Description", "Stops it.")),
              expected({{"Stop", ""}}));
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32")
                                 .qualifier("description", "Stops it.")
                                 .propagatedQualifier("Description", "Stops all.")),
              expected({{"Stop", "Stops it."}}));
}

TEST(ExtrinsicMethods, ADescriptionIsTakenAsText) {
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32").qualifier("Description", true)),
              expected({{"Stop", "true"}}));
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32").qualifier("Description", " ")),
              expected({{"Stop", " "}}));
    EXPECT_EQ(renderedMethod(ModelMethod("Stop", "uint32").qualifier("Description", "50% <a> %s")),
              expected({{"Stop", "50% <a> %s"}}));
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

TEST(ExtrinsicMethods, AsksEveryMethodOnceForItsWrittenQualifiersAndItsParameters) {
    const ModelMethod stop("Stop", "uint32");
    const std::string qualifiers = recorded([&] { (void)stop.getQualifiers(false); });
    const std::string parameters = recorded([&] { (void)stop.getParameters(); });
    const Calls calls =
        callsFor(ModelClass("TST_Class").method(stop).method(ModelMethod("Boot", "uint32")));
    EXPECT_EQ(countOf(calls, qualifiers), 2);
    EXPECT_EQ(countLike(calls, qualifiers), 2);
    EXPECT_EQ(countOf(calls, parameters), 2);
}

TEST(ExtrinsicMethods, ReadsNothingOfTheParameters) {
    const Calls calls = callsFor(ModelMethod("Stop", "uint32"));
    EXPECT_EQ(callsFor(ModelMethod("Stop", "uint32").parameter(ModelParameter("A", "boolean"))),
              calls);
    EXPECT_EQ(callsFor(ModelMethod("Stop", "uint32")
                           .parameter(ModelParameter("A", "TST_Class ref[]")
                                          .qualifier("In")
                                          .qualifier("Description", "How."))
                           .parameter(ModelParameter("B", "uint8").qualifier("Out"))),
              calls);
}

TEST(ExtrinsicMethods, ReadsNeitherTheReturnTypeNorAQualifierByItsName) {
    const ModelMethod stop = ModelMethod("Stop", "uint32").qualifier("Description", "Stops it.");
    const Calls calls = callsFor(stop);
    EXPECT_EQ(countLike(calls, recorded([&] { (void)stop.getReturnType(); })), 0);
    EXPECT_EQ(countLike(calls, recorded([&] { (void)stop.getQualifier("Title", true); })), 0);
}

TEST(ExtrinsicMethods, ReadsNoValueOfOtherQualifiers) {
    const ModelMethod stop = ModelMethod("Stop", "uint32").qualifier("Title", "Stop");
    const urma::IQualifier& title = *stop.getQualifier("Title", false);
    EXPECT_EQ(countLike(callsFor(stop), recorded([&] { (void)title.getValue(); })), 0);
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
    const std::size_t calls = callsFor(cimClass).size();
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
