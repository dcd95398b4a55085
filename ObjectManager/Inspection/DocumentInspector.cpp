#include "ObjectManager/Inspection/DocumentInspector.h"

#include <set>
#include <string>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Xml/Document.h"

namespace Inspection {

namespace {

using Xml::attribute;
using Xml::isElement;
using Xml::localName;

Finding finding(FindingKind kind, std::string member, std::string message) {
    return {.kind = kind,
            .nameSpace = "",
            .className = "",
            .member = std::move(member),
            .message = std::move(message)};
}

Finding notWellFormed(std::string_view name, const std::string& fault) {
    return finding(FindingKind::kNotWellFormed, "",
                   std::string(name) + " is not well-formed: " + fault);
}

const xmlNode* ancestor(const xmlNode& node, int levels) {
    const xmlNode* found = &node;
    while (found != nullptr && levels-- > 0)
        found = found->parent;
    return found != nullptr && isElement(*found) ? found : nullptr;
}

// A method's parameters stand in the elements of its request and its response.
std::string methodOf(std::string elementName) {
    for (const std::string_view suffix : {"_INPUT", "_OUTPUT"}) {
        if (elementName.ends_with(suffix)) {
            elementName.resize(elementName.size() - suffix.size());
            break;
        }
    }
    return elementName;
}

// The property, or the method and the parameter, whose element is around.
std::string memberAround(const xmlNode& node) {
    std::string member;
    for (const xmlNode* around = &node; around != nullptr && isElement(*around);
         around = around->parent) {
        if (localName(*around) != "element")
            continue;
        const std::string name = attribute(*around, "name");
        if (!name.empty())
            member.insert(0, member.empty() ? name : methodOf(name) + ".");
    }
    return member;
}

// Walks a schema and notes what it comes by.
class SchemaInspector {
  public:
    // Loops over what stands side by side and steps down, without recursion: documents are as deep
    // as their maker likes.
    std::vector<Finding> inspect(const xmlNode* root) {
        const xmlNode* node = root;
        while (node != nullptr) {
            if (isElement(*node))
                look(*node);
            if (isElement(*node) && node->children != nullptr) {
                node = node->children;
                continue;
            }
            while (node != root && node->next == nullptr)
                node = node->parent;
            node = node == root ? nullptr : node->next;
        }
        return std::move(findings_);
    }

  private:
    void look(const xmlNode& element) {
        const bool isRestriction = localName(element) == "restriction";
        if (isRestriction || localName(element) == "element")
            lookForUnmappedType(element);
        if (isRestriction)
            lookForManyGaps(element);
    }

    void lookForUnmappedType(const xmlNode& element) {
        if (attribute(element, "type") == "NA" || attribute(element, "base") == "NA") {
            findings_.push_back(finding(FindingKind::kUnmappedType, memberAround(element),
                                        "its type has no place in XML Schema and is \"NA\" there"));
        }
    }

    // The values of a ".." stand in a union within a union.
    void lookForManyGaps(const xmlNode& restriction) {
        const xmlNode* const gapUnion = ancestor(restriction, 2);
        const xmlNode* const outerUnion = ancestor(restriction, 4);
        if (gapUnion == nullptr || outerUnion == nullptr || localName(*gapUnion) != "union" ||
            localName(*outerUnion) != "union")
            return;
        unsigned long gaps = 0;
        for (const xmlNode* child = restriction.children; child != nullptr; child = child->next) {
            if (isElement(*child) && localName(*child) == "enumeration")
                ++gaps;
        }
        if (gaps > kMaxGaps) {
            findings_.push_back(finding(
                FindingKind::kManyGaps, memberAround(restriction),
                "the \"..\" of its ValueMap is written as " + std::to_string(gaps) + " values"));
        }
    }

    std::vector<Finding> findings_;
};

std::vector<Finding> findDuplicateMessages(const xmlNode& definitions) {
    std::vector<Finding> findings;
    std::set<std::string> names;
    for (const xmlNode* child = definitions.children; child != nullptr; child = child->next) {
        if (!isElement(*child) || localName(*child) != "message")
            continue;
        const std::string name = attribute(*child, "name");
        if (!names.insert(name).second) {
            findings.push_back(finding(FindingKind::kDuplicateMessage, "",
                                       "the WSDL has two messages " + Base::quoted(name) +
                                           ", since a method is named like another operation"));
        }
    }
    return findings;
}

}  // namespace

std::vector<Finding> inspectSchema(std::string_view name, std::string_view text) {
    const Xml::Document document(text);
    if (document.fault())
        return {notWellFormed(name, *document.fault())};
    return SchemaInspector().inspect(document.root());
}

std::vector<Finding> inspectWsdl(std::string_view name, std::string_view text) {
    const Xml::Document document(text);
    if (document.fault())
        return {notWellFormed(name, *document.fault())};
    return findDuplicateMessages(*document.root());
}

}  // namespace Inspection
