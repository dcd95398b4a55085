#include "ObjectManager/Pages/ClassPage.h"

#include <vector>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/ClassPicture.h"
#include "ObjectManager/Pages/ExampleRequests.h"
#include "ObjectManager/Pages/Markup.h"
#include "ObjectManager/Pages/MemberSections.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "ObjectManager/Pages/Qualifiers.h"

namespace Pages {

namespace {

using Base::htmlText;
using Repository::CimClass;
using Repository::CimProperty;
using Repository::isTrue;

// Of an association with more ends, its own page tells.
constexpr std::size_t kMaxFarEnds = 8;

constexpr std::size_t kMaxUnfoldedSubclasses = 12;

// What a class page says of one class.
//
// Thread safety: belongs to one thread.
class ClassPage {
  public:
    ClassPage(const CimClass& cimClass, const ClassRelations& relations, Layout layout,
              std::string_view service)
        : class_(cimClass), relations_(relations), layout_(layout), service_(service) {}

    [[nodiscard]] std::string body() const {
        return header() + "<main>\n" + descriptionSection() + placeSection() + addressSection() +
               propertySection(class_, relations_, layout_) +
               methodSection(class_, relations_, layout_) + associationSection() +
               exampleSection(class_, relations_, layout_, service_) + "</main>\n";
    }

  private:
    [[nodiscard]] std::string header() const {
        const std::string top = wayToTop(layout_, nameSpace());
        const std::string document = top + pathOfDocument(nameSpace(), class_.name());
        return "<header>\n<nav aria-label=\"Way\"><a href=\"" + top +
               std::string(pathOfIndex(layout_)) + "\">All classes</a> / " + htmlText(nameSpace()) +
               "</nav>\n<h1>" + htmlText(class_.name()) + "</h1>\n<p class=badges>" + badges() +
               "</p>\n<p class=documents><a href=" + document +
               ".wsdl>WSDL document</a> <a href=" + document + ".xsd>XML Schema</a></p>\n" +
               contents() + "</header>\n";
    }

    [[nodiscard]] std::string badges() const {
        struct Badge {
            const char* qualifier;
            const char* text;
        };
        constexpr Badge kBadges[] = {{"Abstract", "abstract"},       {"Association", "association"},
                                     {"Aggregation", "aggregation"}, {"Composition", "composition"},
                                     {"Indication", "indication"},   {"Exception", "exception"},
                                     {"Terminal", "terminal"}};
        std::string html;
        for (const Badge& each : kBadges) {
            if (isTrue(class_, each.qualifier))
                html += badge(each.text);
        }
        if (isTrue(class_, "Experimental"))
            html += badge("experimental", "warning");
        if (!textsOf(class_, "Deprecated").empty())
            html += badge("deprecated", "warning");
        const std::string version = textOf(class_, "Version");
        return version.empty() ? html : html + badge("version " + version);
    }

    [[nodiscard]] std::string contents() const {
        std::string html =
            "<nav aria-label=\"Contents\"><a href=#place>Place</a> "
            "<a href=#addresses>Addresses</a> <a href=#properties>Properties</a>";
        if (!class_.methods().empty())
            html += " <a href=#methods>Methods</a>";
        if (hasAssociations())
            html += " <a href=#associations>Associations</a>";
        return html + " <a href=#examples>Example requests</a></nav>\n";
    }

    [[nodiscard]] std::string descriptionSection() const {
        std::string html = "<section id=description>\n" + paragraphs(class_.description());
        std::string replacements;
        for (const std::string& each : textsOf(class_, "Deprecated"))
            replacements +=
                (replacements.empty() ? "" : ", ") + mentionLink(relations_, layout_, each);
        if (!replacements.empty())
            html += "<p class=note>Deprecated, replaced by " + replacements + ".</p>\n";
        return html + "</section>\n";
    }

    [[nodiscard]] std::string placeSection() const {
        return "<section id=place>\n<h2>Place</h2>\n" + pictureOf(class_, relations_, layout_) +
               superclassChain() + subclassList() + "</section>\n";
    }

    [[nodiscard]] std::string superclassChain() const {
        if (class_.superclass() == nullptr)
            return "<p>Extends no class.</p>\n";
        std::string html;
        for (const CimClass* each = class_.superclass(); each != nullptr; each = each->superclass())
            html += (html.empty() ? "" : " › ") + link(*each);
        return "<p>Extends " + html + "</p>\n";
    }

    [[nodiscard]] std::string subclassList() const {
        const std::vector<const CimClass*>& subclasses = relations_.subclassesOf(class_);
        if (subclasses.empty())
            return "";
        std::string html =
            std::string("<details") + (subclasses.size() <= kMaxUnfoldedSubclasses ? " open" : "") +
            "><summary>" + Base::counted(subclasses.size(), "subclass", "subclasses") +
            "</summary>\n<ul class=names>\n";
        for (const CimClass* const each : subclasses)
            html += "<li>" + link(*each) + "\n";
        return html + "</ul>\n</details>\n";
    }

    [[nodiscard]] std::string addressSection() const {
        const std::string service(service_);
        const std::string document = service + "/" + pathOfDocument(nameSpace(), class_.name());
        const std::string uri = classUri(class_.name());
        return "<section id=addresses>\n<h2>Addresses</h2>\n<dl>\n" +
               address("Service", service + "/wsman") + address("WSDL", document + ".wsdl") +
               address("XML Schema", document + ".xsd") + address("Namespace URI", uri) +
               address("Resource URI", uri) + "</dl>\n</section>\n";
    }

    static std::string address(const char* title, std::string_view value) {
        return "<dt>" + std::string(title) + "</dt><dd><code data-copy=\"" + title + "\">" +
               htmlText(value) + "</code></dd>\n";
    }

    [[nodiscard]] bool hasAssociations() const {
        for (const CimClass* each = &class_; each != nullptr; each = each->superclass()) {
            if (!relations_.endsAt(*each).empty())
                return true;
        }
        return false;
    }

    [[nodiscard]] std::string associationSection() const {
        if (!hasAssociations())
            return "";
        const std::vector<AssociationEnd>& ends = relations_.endsAt(class_);
        std::string html = "<section id=associations>\n<h2>Associations <small>" +
                           Base::withSeparators(ends.size()) + "</small></h2>\n<ul>\n";
        for (const AssociationEnd& end : ends)
            html += "<li>" + link(*end.association) + " as " + code(end.reference->name()) +
                    farEnds(end) + "\n";
        return html + "</ul>\n" + associationsOfSuperclasses() + "</section>\n";
    }

    [[nodiscard]] std::string farEnds(const AssociationEnd& end) const {
        std::string html;
        std::size_t count = 0;
        for (const CimProperty* const far : referencesOf(*end.association)) {
            if (far == end.reference)
                continue;
            if (count++ == kMaxFarEnds)
                return html + ", …";
            html += (count == 1 ? ", with " : ", ") + code(far->name()) + " " +
                    classLink(relations_, layout_, far->referencedClass());
        }
        return html;
    }

    [[nodiscard]] std::string associationsOfSuperclasses() const {
        std::string html;
        for (const CimClass* each = class_.superclass(); each != nullptr;
             each = each->superclass()) {
            const std::size_t count = relations_.endsAt(*each).size();
            if (count > 0)
                html += (html.empty() ? "" : ", ") + std::string("<a href=") +
                        siblingPage(layout_, each->name()) + "#associations>" +
                        htmlText(each->name()) + "</a> (" + Base::withSeparators(count) + ")";
        }
        return html.empty() ? "" : "<p>Its superclasses have more: " + html + "</p>\n";
    }

    [[nodiscard]] std::string link(const CimClass& cimClass) const {
        return classLink(relations_, layout_, cimClass.name());
    }

    [[nodiscard]] const TSKString& nameSpace() const { return relations_.nameSpace().name(); }

    const CimClass& class_;
    const ClassRelations& relations_;
    Layout layout_;
    std::string_view service_;
};

}  // namespace

std::string classUri(std::string_view className) {
    return "http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/" + std::string(className);
}

std::string makeClassPage(const CimClass& cimClass, const ClassRelations& relations, Layout layout,
                          std::string_view service) {
    return framedPage(
        PageKind::kClass,
        std::string(cimClass.name()) + " – " + std::string(relations.nameSpace().name()),
        ClassPage(cimClass, relations, layout, service).body());
}

}  // namespace Pages
