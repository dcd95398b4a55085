#include "ObjectManager/Pages/MemberSections.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/Markup.h"
#include "ObjectManager/Pages/Qualifiers.h"

namespace Pages {

namespace {

using Base::htmlText;
using Base::percentEncodedPath;
using Repository::CimClass;
using Repository::CimMethod;
using Repository::CimParameter;
using Repository::CimProperty;
using Repository::isTrue;

// More than these are folded.
constexpr std::size_t kMaxUnfoldedValues = 6;

struct Badge {
    const char* qualifier;
    const char* text;
    const char* kind;
};

constexpr Badge kBadges[] = {
    {"Key", "key", "key"},
    {"Required", "required", "required"},
    {"Write", "writable", ""},
    {"Static", "static", ""},
    {"Counter", "counter", ""},
    {"Gauge", "gauge", ""},
    {"OctetString", "octet string", ""},
    {"Experimental", "experimental", "warning"},
};

// Qualifiers whose value is shown beside a name for it.
struct Fact {
    const char* qualifier;
    const char* text;
};

constexpr Fact kFacts[] = {
    {"PUnit", "Unit"},
    {"Units", "Units"},
    {"MinLen", "Minimum length"},
    {"MaxLen", "Maximum length"},
    {"MinValue", "Minimum"},
    {"MaxValue", "Maximum"},
    {"ArrayType", "Order of the array"},
    {"Propagated", "Taken from"},
};

// Writes the members of one class.
//
// Thread safety: belongs to one thread.
class Members {
  public:
    Members(const CimClass& cimClass, const ClassRelations& relations, Layout layout)
        : class_(cimClass), relations_(relations), layout_(layout) {}

    void addProperty(const CimProperty& property) {
        begin("property", property);
        html_ += "<h3>" + nameOf("property", property) + " " + typeOf(property) +
                 badgesOf(property) + "</h3>\n";
        addOrigin(class_.declaringClass(property));
        addAbout(property);
        html_ += "</div>\n";
    }

    void addMethod(const CimMethod& method) {
        begin("method", method);
        html_ += "<h3>" + nameOf("method", method) + " " +
                 code(method.getReturnType().getTypeName()) + badgesOf(method) + "</h3>\n";
        addOrigin(class_.declaringClass(method));
        html_ += foldedText(descriptionOf(method));
        addFacts(method);
        if (!method.parameters().empty())
            html_ += "<h4>Parameters</h4>\n";
        for (const CimParameter& parameter : method.parameters())
            addParameter(parameter);
        const std::vector<NamedValue> values = namedValuesOf(method);
        if (!values.empty())
            html_ += "<h4>Return values</h4>\n";
        addValues(values);
        html_ += "<p><a href=\"#request-" + percentEncodedPath(method.name()) +
                 "\">Example request</a></p>\n</div>\n";
    }

    [[nodiscard]] std::string take() { return std::move(html_); }

  private:
    template <typename Member>
    void begin(const char* prefix, const Member& member) {
        const bool isInherited = &class_.declaringClass(member) != &class_;
        html_ += std::string("<div class=\"member") + (isInherited ? " inherited" : "") +
                 "\" id=\"" + prefix + "-" + htmlText(member.name()) + "\">\n";
    }

    template <typename Member>
    static std::string nameOf(const char* prefix, const Member& member) {
        return "<a href=\"#" + std::string(prefix) + "-" + percentEncodedPath(member.name()) +
               "\">" + htmlText(member.name()) + "</a>";
    }

    template <typename Member>
    std::string typeOf(const Member& member) const {
        const std::string array = member.getType().isArray() ? "[]" : "";
        if (member.getType().isReference())
            return "<code>" + classLink(relations_, layout_, member.referencedClass()) + " REF" +
                   array + "</code>";
        const std::string embedded = textOf(member, "EmbeddedInstance");
        if (!embedded.empty())
            return "<code>instance of " + classLink(relations_, layout_, embedded) + array +
                   "</code>";
        if (isTrue(member, "EmbeddedObject"))
            return "<code>any object" + array + "</code>";
        return code(std::string(member.getType().getTypeName()) + array);
    }

    static std::string badgesOf(const urma::IQualified& member) {
        std::string html;
        for (const Badge& each : kBadges) {
            if (isTrue(member, each.qualifier))
                html += badge(each.text, each.kind);
        }
        if (!textsOf(member, "Deprecated").empty())
            html += badge("deprecated", "warning");
        return html;
    }

    void addOrigin(const CimClass& declaring) {
        if (&declaring != &class_)
            html_ += "<p class=origin>from " + classLink(relations_, layout_, declaring.name()) +
                     "</p>\n";
    }

    void addParameter(const CimParameter& parameter) {
        html_ += "<div class=parameter>\n<h5>" + htmlText(parameter.name()) + " " +
                 typeOf(parameter) + (isInput(parameter) ? badge("in") : "") +
                 (isOutput(parameter) ? badge("out") : "") + badgesOf(parameter) + "</h5>\n";
        addAbout(parameter);
        html_ += "</div>\n";
    }

    template <typename Definition>
    void addAbout(const Definition& definition) {
        html_ += foldedText(descriptionOf(definition));
        addFacts(definition);
        addValues(namedValuesOf(definition));
    }

    void addFacts(const urma::IQualified& definition) {
        std::string facts;
        for (const Fact& fact : kFacts) {
            const std::string text = textOf(definition, fact.qualifier);
            if (!text.empty())
                facts += "<dt>" + std::string(fact.text) + "</dt><dd>" + htmlText(text) + "</dd>\n";
        }
        addMentions(facts, "Replaced by", textsOf(definition, "Deprecated"));
        addMentions(facts, "See also", textsOf(definition, "ModelCorrespondence"));
        if (!facts.empty())
            html_ += "<dl>\n" + facts + "</dl>\n";
    }

    void addMentions(std::string& facts, const char* title,
                     const std::vector<std::string>& mentions) const {
        if (mentions.empty())
            return;
        facts += "<dt>" + std::string(title) + "</dt><dd>";
        for (const std::string& mention : mentions)
            facts += (&mention == &mentions.front() ? "" : ", ") +
                     mentionLink(relations_, layout_, mention);
        facts += "</dd>\n";
    }

    void addValues(const std::vector<NamedValue>& values) {
        if (values.empty())
            return;
        const bool haveNames =
            std::ranges::any_of(values, [](const NamedValue& each) { return !each.name.empty(); });
        html_ += std::string("<details class=values") +
                 (values.size() <= kMaxUnfoldedValues ? " open" : "") + "><summary>" +
                 Base::counted(values.size(), "value", "values") + "</summary>\n<table>\n";
        html_ += haveNames ? "<tr><th>Value<th>Name\n" : "<tr><th>Value\n";
        for (const NamedValue& each : values) {
            html_ += "<tr><td>" + htmlText(each.value);
            if (haveNames)
                html_ += "<td>" + htmlText(each.name);
            html_ += "\n";
        }
        html_ += "</table>\n</details>\n";
    }

    const CimClass& class_;
    const ClassRelations& relations_;
    Layout layout_;
    std::string html_;
};

template <typename Member>
std::size_t countOwn(const CimClass& cimClass, const std::vector<const Member*>& members) {
    return static_cast<std::size_t>(std::ranges::count_if(
        members, [&](const Member* each) { return &cimClass.declaringClass(*each) == &cimClass; }));
}

template <typename Member>
std::string beginSection(const char* title, const char* id, const CimClass& cimClass,
                         const std::vector<const Member*>& members) {
    const std::size_t own = countOwn(cimClass, members);
    std::string html = "<section id=" + std::string(id) + ">\n<h2>" + title + " <small>" +
                       Base::withSeparators(members.size());
    const bool isMixed = own != members.size();
    if (isMixed)
        html += ", " + Base::withSeparators(members.size() - own) + " inherited";
    html += "</small></h2>\n";
    if (isMixed)
        html += "<input type=checkbox id=hide-" + std::string(id) + " class=hide><label for=hide-" +
                id + ">Hide inherited ones</label>\n";
    return html;
}

std::string linksToKeys(const CimClass& cimClass) {
    std::string links;
    for (const CimProperty* const property : cimClass.properties()) {
        if (isTrue(*property, "Key"))
            links += (links.empty() ? "" : ", ") + std::string("<a href=\"#property-") +
                     percentEncodedPath(property->name()) + "\">" + htmlText(property->name()) +
                     "</a>";
    }
    return links.empty() ? "<p>No keys.</p>\n" : "<p>Keys: " + links + "</p>\n";
}

}  // namespace

std::string propertySection(const CimClass& cimClass, const ClassRelations& relations,
                            Layout layout) {
    Members members(cimClass, relations, layout);
    for (const CimProperty* const property : cimClass.properties())
        members.addProperty(*property);
    return beginSection("Properties", "properties", cimClass, cimClass.properties()) +
           linksToKeys(cimClass) + members.take() + "</section>\n";
}

std::string methodSection(const CimClass& cimClass, const ClassRelations& relations,
                          Layout layout) {
    if (cimClass.methods().empty())
        return "";
    Members members(cimClass, relations, layout);
    for (const CimMethod* const method : cimClass.methods())
        members.addMethod(*method);
    return beginSection("Methods", "methods", cimClass, cimClass.methods()) + members.take() +
           "</section>\n";
}

bool isInput(const urma::IQualified& parameter) {
    return parameter.getQualifier("In", true) == nullptr || isTrue(parameter, "In");
}

bool isOutput(const urma::IQualified& parameter) {
    return isTrue(parameter, "Out");
}

}  // namespace Pages
