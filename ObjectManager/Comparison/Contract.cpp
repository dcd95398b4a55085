#include "ObjectManager/Comparison/Contract.h"

#include <charconv>
#include <functional>
#include <libxml/tree.h>
#include <map>
#include <memory>
#include <new>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Xml/Document.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Comparison {

namespace {

using Xml::attribute;
using Xml::isElement;
using Xml::localName;

TeskBaseException noContract(const std::string& reason) {
    return {"Comparison::readContract", TSKString("it is no WSDL document of a class: " + reason),
            CIM_ERR_FAILED};
}

using Visit = std::function<void(const xmlNode&)>;

void forEachChild(const xmlNode& parent, const Visit& visit) {
    for (const xmlNode* child = parent.children; child != nullptr; child = child->next) {
        if (isElement(*child))
            visit(*child);
    }
}

void forEachChild(const xmlNode& parent, std::string_view name, const Visit& visit) {
    forEachChild(parent, [&](const xmlNode& child) {
        if (localName(child) == name)
            visit(child);
    });
}

// The first of that name; null when there is none.
const xmlNode* childOf(const xmlNode* parent, std::string_view name) {
    if (parent == nullptr)
        return nullptr;
    for (const xmlNode* child = parent->children; child != nullptr; child = child->next) {
        if (isElement(*child) && localName(*child) == name)
            return child;
    }
    return nullptr;
}

// "Name" of "class:Name".
std::string_view withoutPrefix(std::string_view name) {
    return name.substr(name.find(':') + 1);  // npos + 1 is 0
}

// "unsignedShort" of "xs:unsignedShort" and of "cim:cimUnsignedShort".
std::string typeName(std::string_view name) {
    std::string local(withoutPrefix(name));
    constexpr std::string_view kPrefix = "cim";
    if (name.starts_with("cim:") && local.starts_with(kPrefix) && local.size() > kPrefix.size()) {
        local.erase(0, kPrefix.size());
        local.front() = Base::lowerCase(local.front());
    }
    return local;
}

struct FreeBuffer {
    void operator()(xmlBuffer* buffer) const noexcept { xmlBufferFree(buffer); }
};

// A definition as it stands in the document.
std::string textOf(const xmlNode& node) {
    const std::unique_ptr<xmlBuffer, FreeBuffer> buffer(xmlBufferCreate());
    if (!buffer || xmlNodeDump(buffer.get(), node.doc, const_cast<xmlNode*>(&node), 0, 0) < 0)
        throw std::bad_alloc();
    return reinterpret_cast<const char*>(xmlBufferContent(buffer.get()));
}

// Reads the facets of a simple type into an element.
class FacetReader {
  public:
    explicit FacetReader(Element& element) : element_(element) {}

    // `restriction` stands for the type that it is based on, or for a union of restrictions.
    void read(const xmlNode& restriction) {
        const xmlNode* const simpleType = childOf(&restriction, "simpleType");
        const xmlNode* const unionType = childOf(simpleType, "union");
        if (unionType != nullptr)
            readUnion(*unionType);
        else
            readFacets(restriction);
    }

  private:
    void readUnion(const xmlNode& unionType) {
        forEachChild(unionType, "simpleType", [&](const xmlNode& simpleType) {
            if (const xmlNode* const nested = childOf(&simpleType, "union"))
                readUnion(*nested);
            else if (const xmlNode* const restriction = childOf(&simpleType, "restriction"))
                readMember(*restriction);
        });
    }

    // A type in a union that is not restricted allows all values.
    void readMember(const xmlNode& restriction) {
        readFacets(restriction);
        if (childOf(&restriction, "enumeration") == nullptr &&
            childOf(&restriction, "minInclusive") == nullptr &&
            childOf(&restriction, "maxInclusive") == nullptr)
            element_.values.addAll();
    }

    void readFacets(const xmlNode& restriction) {
        const std::string type = typeName(attribute(restriction, "base"));
        if (element_.type.empty()) {
            element_.type = type;
            element_.values = ValueSet(type);
        } else if (element_.type != type) {
            element_.type += " or " + type;
        }
        std::optional<std::string> least;
        std::optional<std::string> most;
        forEachChild(restriction, [&](const xmlNode& facet) {
            const std::string_view name = localName(facet);
            if (name == "enumeration")
                element_.values.addValue(attribute(facet, "value"));
            else if (name == "minInclusive")
                least = attribute(facet, "value");
            else if (name == "maxInclusive")
                most = attribute(facet, "value");
            else if (name == "maxLength")
                readMaxLength(attribute(facet, "value"));
        });
        if (least || most)
            element_.values.addRange(least, most);
    }

    void readMaxLength(const std::string& text) {
        std::uint64_t length = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), length).ec == std::errc())
            element_.maxLength = length;
    }

    Element& element_;
};

void readType(const xmlNode& definition, Element& element) {
    const std::string named = attribute(definition, "type");
    if (!named.empty()) {
        element.type = typeName(named);
        element.values = ValueSet(element.type);
        return;
    }
    const xmlNode* const complexType = childOf(&definition, "complexType");
    const xmlNode* const content = childOf(complexType, "simpleContent");
    if (const xmlNode* const restriction = childOf(content, "restriction"))
        FacetReader(element).read(*restriction);
    else if (complexType != nullptr)
        element.type = textOf(*complexType);
}

// Reads one document.
class ContractReader {
  public:
    explicit ContractReader(const xmlNode& definitions) : definitions_(definitions) {
        if (localName(definitions) != "definitions")
            throw noContract("its outermost element is not \"definitions\"");
        const xmlNode* const schema = childOf(childOf(&definitions, "types"), "schema");
        if (schema == nullptr)
            throw noContract("it holds no schema");
        forEachChild(*schema, [&](const xmlNode& child) {
            if (localName(child) == "element")
                elements_.emplace(attribute(child, "name"), &child);
            else if (localName(child) == "complexType")
                types_.emplace(attribute(child, "name"), &child);
        });
        forEachChild(definitions, "message", [&](const xmlNode& message) {
            messages_.emplace(attribute(message, "name"), &message);
        });
    }

    [[nodiscard]] Contract read() const {
        Contract contract;
        contract.targetNamespace = attribute(definitions_, "targetNamespace");
        const xmlNode* const service = childOf(&definitions_, "service");
        if (service == nullptr)
            throw noContract("it has no service");
        if (const xmlNode* const address = childOf(childOf(service, "port"), "address"))
            contract.address = attribute(*address, "location");
        constexpr std::string_view kSuffix = "_Service";
        std::string className = attribute(*service, "name");
        if (!className.ends_with(kSuffix))
            throw noContract("its service does not name the class");
        className.resize(className.size() - kSuffix.size());
        const auto type = types_.find(className + "_Type");
        if (type == types_.end())
            throw noContract("its schema does not define the type of the class");
        contract.properties = elementsOf(*type->second);
        if (const xmlNode* const portType = childOf(&definitions_, "portType")) {
            forEachChild(*portType, "operation", [&](const xmlNode& operation) {
                contract.operations.push_back(readOperation(operation));
            });
        }
        return contract;
    }

  private:
    [[nodiscard]] std::vector<Element> elementsOf(const xmlNode& complexType) const {
        std::vector<Element> elements;
        const xmlNode* const sequence = childOf(&complexType, "sequence");
        if (sequence == nullptr)
            return elements;
        forEachChild(*sequence, "element",
                     [&](const xmlNode& element) { elements.push_back(readElement(element)); });
        return elements;
    }

    // An element that is defined at its place, or one that refers to a definition.
    [[nodiscard]] Element readElement(const xmlNode& place) const {
        const std::string reference = attribute(place, "ref");
        const xmlNode* definition = &place;
        if (!reference.empty()) {
            const auto found = elements_.find(withoutPrefix(reference));
            if (found == elements_.end())
                throw noContract("its schema does not define " + reference);
            definition = found->second;
        }
        Element element;
        element.name = attribute(*definition, "name");
        const std::string maxOccurs = attribute(place, "maxOccurs");
        element.isArray = !maxOccurs.empty() && maxOccurs != "1";
        element.mayBeAbsent = attribute(place, "minOccurs") == "0";
        element.mayBeNil = attribute(*definition, "nillable") == "true";
        readType(*definition, element);
        return element;
    }

    [[nodiscard]] Operation readOperation(const xmlNode& operation) const {
        Operation result;
        result.name = attribute(operation, "name");
        result.input = readMessage(childOf(&operation, "input"));
        result.output = readMessage(childOf(&operation, "output"));
        return result;
    }

    // What is in a body that has a type with a name is told where that type is.
    [[nodiscard]] Message readMessage(const xmlNode* use) const {
        Message result;
        if (use == nullptr)
            return result;
        const auto message = messages_.find(withoutPrefix(attribute(*use, "message")));
        const xmlNode* const part =
            message == messages_.end() ? nullptr : childOf(message->second, "part");
        if (part == nullptr)
            return result;
        result.body = attribute(*part, "element");
        const auto element = elements_.find(withoutPrefix(result.body));
        if (element == elements_.end())
            return result;
        if (const xmlNode* const complexType = childOf(element->second, "complexType"))
            result.elements = elementsOf(*complexType);
        return result;
    }

    using Nodes = std::map<std::string, const xmlNode*, std::less<>>;

    const xmlNode& definitions_;
    Nodes elements_;  // of the schema, by name
    Nodes types_;
    Nodes messages_;
};

}  // namespace

Contract readContract(std::string_view wsdl) {
    const Xml::Document document(wsdl);
    if (document.fault())
        throw noContract(*document.fault());
    return ContractReader(*document.root()).read();
}

}  // namespace Comparison
