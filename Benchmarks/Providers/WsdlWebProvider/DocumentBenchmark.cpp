// Generating the documents of a class: how many bytes a second, how cost grows with the class, how
// much memory a request needs, and libxml2 building and dumping the same tree for comparison.

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Benchmarks/Support/AllocationTracker.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Providers/WsdlWebProvider/WsdlWebProvider.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/TestHost.h"

namespace {

constexpr const char* kDescription =
    "A text of the length that descriptions of the field have: it says in a sentence or two what "
    "the thing stands for, when it is there, and what else it is related to.";

std::string numbered(const char* stem, long number) {
    return stem + std::to_string(number);
}

ModelProperty plainProperty(long number) {
    return ModelProperty(numbered("OperationalValue", number).c_str(),
                         number % 3 == 0 ? "string" : "uint32")
        .qualifier("Description", kDescription);
}

ModelProperty enumeratedProperty(long number, bool withGaps) {
    ModelProperty property(numbered("OperationalStatus", number).c_str(), "uint16");
    property.qualifier("Description", kDescription);
    if (withGaps)
        property.qualifier("ValueMap", {"1", "2", "3", "4", "5..7", "16", "..", "32768..65535"});
    else
        property.qualifier("ValueMap", {"0", "1", "2", "3", "4", "5", "6", "7"});
    return property;
}

ModelProperty limitedProperty(long number) {
    return ModelProperty(numbered("Caption", number).c_str(), "string")
        .qualifier("Description", kDescription)
        .qualifier("MaxLen", "64");
}

ModelMethod methodWithParameters(long number) {
    return ModelMethod(numbered("RequestStateChange", number).c_str(), "uint32")
        .qualifier("Description", kDescription)
        .parameter(ModelParameter("RequestedState", "uint16").qualifier("In"))
        .parameter(ModelParameter("Job", "CIM_ConcreteJob ref").qualifier("Out"))
        .parameter(ModelParameter("TimeoutPeriod", "datetime").qualifier("In"))
        .parameter(ModelParameter("Settings", "string[]").qualifier("In").qualifier("Out"));
}

// A large class of the field: 60 properties, 20 of them with a ValueMap (5 with ".."), 5 with
// MaxLen, and 15 methods of 4 parameters.
ModelClass largeClass() {
    ModelClass large("CIM_StorageConfigurationService");
    large.qualifier("Description", kDescription);
    large.property(ModelProperty("InstanceID", "string").qualifier("Key"));
    for (long number = 1; number < 35; ++number)
        large.property(plainProperty(number));
    for (long number = 0; number < 20; ++number)
        large.property(enumeratedProperty(number, number % 4 == 0));
    for (long number = 0; number < 5; ++number)
        large.property(limitedProperty(number));
    for (long number = 0; number < 15; ++number)
        large.method(methodWithParameters(number));
    return large;
}

ModelClass classWithProperties(long count) {
    ModelClass cimClass("CIM_Wide");
    for (long number = 0; number < count; ++number)
        cimClass.property(plainProperty(number));
    return cimClass;
}

ModelClass classWithMethods(long count) {
    ModelClass cimClass("CIM_Busy");
    for (long number = 0; number < count; ++number)
        cimClass.method(methodWithParameters(number));
    return cimClass;
}

// A lone ".." whose gaps are all the numbers below `count`.
ModelClass classWithGaps(long count) {
    return ModelClass("CIM_Gaps")
        .property(ModelProperty("Value", "uint32")
                      .qualifier("ValueMap", ModelValue({std::to_string(count), ".."})));
}

std::string schemaDocument(const TSKSmrPtr<ITeskClass>& cimClass) {
    const TSKSmrPtr<WsdlUtil::ClassList> classes(new WsdlUtil::ClassList({cimClass}));
    std::stringstream stream;
    WsdlUtil::streamXsdDefinitions(stream, "http://localhost:5985/root/cimv2/", classes);
    return std::move(stream).str();
}

// Everything of the WSDL document but its schema.
TSKString wsdlAround(const ITeskClass& cimClass) {
    WSDLFile wsdl(cimClass.getName(), "http://localhost:5985/", "root/cimv2", "");
    wsdl.setDocumentation(kDescription);
    WsdlUtil::enumerateExtrinsicsMethods(cimClass.getMethods(true), wsdl);
    return wsdl.toString(false);
}

void reportBytes(benchmark::State& state, std::size_t documentSize) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(documentSize));
    state.counters["document"] = static_cast<double>(documentSize);
}

// libxml2's half of the comparison: the elements of a schema document in the order of the text,
// ready to be built, so that only building and dumping is measured.

struct FlatElement {
    std::size_t depth;
    std::string localName;
    std::vector<std::pair<std::string, std::string>> attributes;
};

struct FlatDocument {
    std::vector<std::pair<std::string, std::string>> namespaces;  // of the root
    std::vector<FlatElement> elements;                            // all of them in namespace "xs"
};

const xmlChar* xmlText(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

std::string plainText(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

void flatten(const xmlNode* node, std::size_t depth, FlatDocument& flat) {
    FlatElement element{depth, plainText(node->name), {}};
    for (const xmlAttr* attribute = node->properties; attribute != nullptr;
         attribute = attribute->next)
        element.attributes.emplace_back(plainText(attribute->name),
                                        plainText(attribute->children->content));
    flat.elements.push_back(std::move(element));
    for (const xmlNode* child = node->children; child != nullptr; child = child->next)
        flatten(child, depth + 1, flat);
}

FlatDocument flatten(const std::string& text) {
    const Document document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr,
                                          nullptr, XML_PARSE_NOBLANKS),
                            &xmlFreeDoc);
    const xmlNode* root = xmlDocGetRootElement(document.get());
    FlatDocument flat;
    for (const xmlNs* ns = root->nsDef; ns != nullptr; ns = ns->next)
        flat.namespaces.emplace_back(plainText(ns->prefix), plainText(ns->href));
    flatten(root, 0, flat);
    return flat;
}

xmlNode* addRoot(xmlDoc* document, const FlatDocument& flat) {
    xmlNode* root = xmlNewDocNode(document, nullptr, xmlText(flat.elements[0].localName), nullptr);
    xmlDocSetRootElement(document, root);
    for (const auto& [prefix, uri] : flat.namespaces)
        xmlNewNs(root, xmlText(uri), xmlText(prefix));
    xmlSetNs(root, root->nsDef);
    return root;
}

Document buildLibxmlTree(const FlatDocument& flat) {
    Document document(xmlNewDoc(xmlText("1.0")), &xmlFreeDoc);
    std::vector<xmlNode*> path;
    for (const FlatElement& element : flat.elements) {
        path.resize(element.depth);
        xmlNode* node = path.empty() ? addRoot(document.get(), flat)
                                     : xmlNewChild(path.back(), path.front()->ns,
                                                   xmlText(element.localName), nullptr);
        for (const auto& [name, value] : element.attributes)
            xmlNewProp(node, xmlText(name), xmlText(value));
        path.push_back(node);
    }
    return document;
}

using Dump = std::unique_ptr<xmlChar, decltype(xmlFree)>;

std::pair<Dump, int> buildAndDumpWithLibxml(const FlatDocument& flat) {
    const Document document = buildLibxmlTree(flat);
    xmlChar* text = nullptr;
    int size = 0;
    xmlDocDumpFormatMemory(document.get(), &text, &size, 1);
    return {Dump(text, xmlFree), size};
}

// Both print the same tree: the same text but for libxml2's XML declaration and its order of
// namespace declarations and attributes in the root's tag.
bool bothPrintTheSame(const FlatDocument& flat, std::string_view expected) {
    const auto [dump, size] = buildAndDumpWithLibxml(flat);
    std::string_view text(reinterpret_cast<const char*>(dump.get()),
                          static_cast<std::size_t>(size));
    text.remove_prefix(text.find('\n') + 1);
    return text.size() == expected.size() &&
           text.substr(text.find('\n')) == expected.substr(expected.find('\n'));
}

// To libxml2's advantage: its tree is made of texts that lie ready, where the plug-in reads the
// class too. First, so that it finds a heap that is hardly used.
void buildAndDumpSchemaWithLibxml2(benchmark::State& state) {
    const std::string document = schemaDocument(largeClass().share());
    const FlatDocument flat = flatten(document);
    if (!bothPrintTheSame(flat, document)) {
        state.SkipWithError("The trees of the plug-in and of libxml2 differ");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(buildAndDumpWithLibxml(flat));
    reportBytes(state, document.size());
}
BENCHMARK(buildAndDumpSchemaWithLibxml2)->Unit(benchmark::kMicrosecond);

void generateSchema(benchmark::State& state) {
    const auto cimClass = largeClass().share();
    for (auto _ : state)
        benchmark::DoNotOptimize(schemaDocument(cimClass));
    reportBytes(state, schemaDocument(cimClass).size());
}
BENCHMARK(generateSchema)->Unit(benchmark::kMicrosecond);

void generateWsdlAroundTheSchema(benchmark::State& state) {
    const auto cimClass = largeClass().share();
    for (auto _ : state)
        benchmark::DoNotOptimize(wsdlAround(*cimClass));
    reportBytes(state, wsdlAround(*cimClass).length());
}
BENCHMARK(generateWsdlAroundTheSchema)->Unit(benchmark::kMicrosecond);

// Requests, from path to response bytes.

// Counts what it is given, and keeps nothing.
class CountingOutput : public TSKGenericHTTPOStream {
  public:
    void write(const char* data, unsigned long length) override {
        benchmark::DoNotOptimize(data);
        bytes += length;
    }
    void getPeerAddressString(TSKString& peerHost, TSKString& /*peerPort*/) const override {
        peerHost = "192.0.2.7";
    }

    std::size_t bytes = 0;
};

std::size_t request(const char* path) {
    TSKHTTPRequest request("GET", path, "HTTP/1.1");
    request.setHeaderField("Host", "localhost:5985", false);
    CountingOutput output;
    process(request, output);
    return output.bytes;
}

bool isFound(const std::string& path) {
    TSKHTTPRequest request("GET", path.c_str(), "HTTP/1.1");
    RecordedOutput output;
    process(request, output);
    return output.text.starts_with("HTTP/1.1 200 ");
}

void answerRequest(benchmark::State& state, const char* path) {
    TestHost host;
    host.repository().add("root/cimv2", largeClass());
    if (!isFound(path)) {
        state.SkipWithError("There is no such document");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(request(path));
    const std::size_t size = request(path);
    reportBytes(state, size);
    const auto peak = AllocationTracker::peakOf([&] { (void)request(path); });
    state.counters["peakPerDocument"] = static_cast<double>(peak) / static_cast<double>(size);
}
BENCHMARK_CAPTURE(answerRequest, schema, "/root/cimv2/CIM_StorageConfigurationService.xsd")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(answerRequest, wsdl, "/root/cimv2/CIM_StorageConfigurationService.wsdl")
    ->Unit(benchmark::kMicrosecond);

// Growth: the work is in proportion to the number of what the class has many of. Documents that no
// longer fit into the processor's caches, from a few megabytes on, take up to three times as long a
// piece: the memory for them is new each time, and the kernel has to clear it.

void grow(benchmark::State& state, ModelClass (*makeClass)(long)) {
    TestHost host;
    const ModelClass cimClass = makeClass(state.range(0));
    host.repository().add("root/cimv2", cimClass);
    const std::string path = std::string("/root/cimv2/") + cimClass.getName().data() + ".wsdl";
    if (!isFound(path)) {
        state.SkipWithError("There is no such document");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(request(path.c_str()));
    const std::size_t size = request(path.c_str());
    reportBytes(state, size);
    state.counters["itemsPerSecond"] = benchmark::Counter(
        static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate);
    const auto peak = AllocationTracker::peakOf([&] { (void)request(path.c_str()); });
    state.counters["peakPerDocument"] = static_cast<double>(peak) / static_cast<double>(size);
}
BENCHMARK_CAPTURE(grow, properties, &classWithProperties)
    ->RangeMultiplier(10)
    ->Range(10, 10'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(grow, methods, &classWithMethods)
    ->RangeMultiplier(10)
    ->Range(10, 10'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(grow, gaps, &classWithGaps)
    ->RangeMultiplier(10)
    ->Range(10, 10'000)
    ->Arg(20'000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
