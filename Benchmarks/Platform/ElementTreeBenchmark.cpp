// Building an XML tree and printing it, beside libxml2 doing the same with the same tree.

#include <array>
#include <benchmark/benchmark.h>
#include <libxml/tree.h>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "Benchmarks/Support/AllocationTracker.h"
#include "Platform/Soap/SOAPElement.h"

namespace {

constexpr const char* kPrefix = "xs";
constexpr const char* kNamespace = "http://www.w3.org/2001/XMLSchema";

constexpr int kGroups = 500;
constexpr int kElementsInAGroup = 4;  // 2,000 elements below the root, in four levels

struct ElementText {
    const char* localName;
    const char* firstName;
    const char* firstValue;
    const char* secondName;
    const char* secondValue;
};

// One group, each element the child of the one before: what a class schema is full of.
constexpr std::array<ElementText, kElementsInAGroup> kGroup = {{
    {"element", "name", "OperationalStatus", "type", "cim:cimUnsignedShort"},
    {"restriction", "base", "cim:cimUnsignedShort", "id", "r1"},
    {"any", "namespace", "##other", "processContents", "lax"},
    {"element", "minOccurs", "0", "maxOccurs", "unbounded"},
}};

using Element = TSKSmrPtr<SOAPElement>;

Element addElement(const Element& parent, const ElementText& text) {
    const TSKSmrPtr<SOAPQName> name(new SOAPQName(text.localName));
    name->setPrefix(parent->getQname()->getPrefix());
    Element element = SOAPElement::makeElement(name);
    parent->addChildElement(element);
    element->addAttribute(TSKSmrPtr<SOAPQName>(new SOAPQName(text.firstName)), text.firstValue);
    element->addAttribute(TSKSmrPtr<SOAPQName>(new SOAPQName(text.secondName)), text.secondValue);
    return element;
}

Element buildTree() {
    Element root = SOAPElement::makeElement(TSKSmrPtr<SOAPQName>(new SOAPQName("schema", kPrefix)));
    root->addAttribute(TSKSmrPtr<SOAPQName>(new SOAPQName("xmlns:xs")), kNamespace);
    for (int group = 0; group < kGroups; ++group) {
        Element parent = root;
        for (const ElementText& text : kGroup)
            parent = addElement(parent, text);
    }
    return root;
}

std::string buildAndPrint() {
    std::ostringstream stream;
    buildTree()->printXML(stream, std::numeric_limits<unsigned long>::max());
    return std::move(stream).str();
}

const xmlChar* xmlText(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

Document buildLibxmlTree() {
    Document document(xmlNewDoc(xmlText("1.0")), &xmlFreeDoc);
    xmlNode* root = xmlNewDocNode(document.get(), nullptr, xmlText("schema"), nullptr);
    xmlDocSetRootElement(document.get(), root);
    xmlNs* ns = xmlNewNs(root, xmlText(kNamespace), xmlText(kPrefix));
    xmlSetNs(root, ns);
    for (int group = 0; group < kGroups; ++group) {
        xmlNode* parent = root;
        for (const ElementText& text : kGroup) {
            parent = xmlNewChild(parent, ns, xmlText(text.localName), nullptr);
            xmlNewProp(parent, xmlText(text.firstName), xmlText(text.firstValue));
            xmlNewProp(parent, xmlText(text.secondName), xmlText(text.secondValue));
        }
    }
    return document;
}

using Dump = std::unique_ptr<xmlChar, decltype(xmlFree)>;

std::pair<Dump, int> buildAndDumpWithLibxml() {
    const Document document = buildLibxmlTree();
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpFormatMemory(document.get(), &text, &size, 1);
    return {Dump(text, xmlFree), size};
}

// The benchmark compares nothing unless both print the same, but for libxml2's XML declaration.
bool bothPrintTheSame() {
    const auto [dump, size] = buildAndDumpWithLibxml();
    std::string_view expected(reinterpret_cast<const char*>(dump.get()),
                              static_cast<std::size_t>(size));
    expected.remove_prefix(expected.find('\n') + 1);
    return buildAndPrint() == expected;
}

template <typename Operation>
void report(benchmark::State& state, std::size_t documentSize, const Operation& operation) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(documentSize));
    state.counters["document"] = static_cast<double>(documentSize);
    state.counters["peak"] = static_cast<double>(AllocationTracker::peakOf(operation));
}

// First, so that it finds the heap as it is at the start of a process.
void buildAndDumpTreeWithLibxml2(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(buildAndDumpWithLibxml());
    report(state, static_cast<std::size_t>(buildAndDumpWithLibxml().second),
           [] { (void)buildAndDumpWithLibxml(); });
}
BENCHMARK(buildAndDumpTreeWithLibxml2)->Unit(benchmark::kMicrosecond);

void buildAndPrintTree(benchmark::State& state) {
    if (!bothPrintTheSame()) {
        state.SkipWithError("The trees of the platform and of libxml2 differ");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(buildAndPrint());
    report(state, buildAndPrint().size(), [] { (void)buildAndPrint(); });
}
BENCHMARK(buildAndPrintTree)->Unit(benchmark::kMicrosecond);

void buildTreeOnly(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(buildTree());
}
BENCHMARK(buildTreeOnly)->Unit(benchmark::kMicrosecond);

void printTreeOnly(benchmark::State& state) {
    const Element root = buildTree();
    for (auto _ : state) {
        std::ostringstream stream;
        root->printXML(stream, std::numeric_limits<unsigned long>::max());
        benchmark::DoNotOptimize(stream);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(buildAndPrint().size()));
}
BENCHMARK(printTreeOnly)->Unit(benchmark::kMicrosecond);

}  // namespace
