#include "ObjectManager/Pages/ClassPicture.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Base/Utf8.h"

namespace Pages {

namespace {

using Base::htmlText;
using Repository::CimClass;
using Repository::CimProperty;

// In units of the picture, which are pixels where there is room.
constexpr int kWidth = 360;
constexpr int kRowHeight = 34;
constexpr int kBoxHeight = 24;
constexpr int kIndent = 14;
constexpr int kPadding = 8;

constexpr std::size_t kMaxAncestors = 9;
constexpr std::size_t kMaxSubclasses = 9;
constexpr std::size_t kMaxAssociations = 6;
constexpr std::size_t kMaxFarEnds = 3;
constexpr std::size_t kMaxNameBytes = 60;

std::string number(int value) {
    return std::to_string(value);
}

std::string shortened(std::string_view name) {
    if (name.size() <= kMaxNameBytes)
        return std::string(name);
    return std::string(name.substr(0, Base::startOfCharacter(name, kMaxNameBytes))) + "…";
}

// Rows of boxes from top to bottom.
//
// Thread safety: belongs to one thread.
class Drawing {
  public:
    explicit Drawing(Layout layout) : layout_(layout) {}

    // Returns the number of its row.
    int addBox(int indent, const CimClass& cimClass, const char* kind) {
        addLinkedFrame(leftOf(indent), cimClass, kind);
        return rows_++;
    }

    // For a class that the namespace does not have.
    int addMissing(int indent, std::string_view className) {
        addMissingFrame(leftOf(indent), className);
        return rows_++;
    }

    int addNote(int indent, std::string_view text) {
        addNoteAt(leftOf(indent), text);
        content_ += "\n";
        return rows_++;
    }

    // A role and the class that plays it, in a row if they fit; null for a class that the namespace
    // does not have.
    int addRole(int indent, const std::string& role, const CimClass* cimClass,
                std::string_view className) {
        const int row = rows_;
        const int end = addNoteAt(leftOf(indent), shortened(role) + ":") + kPadding;
        int left = end;
        if (end + lengthOf(shortened(className)) + 2 * kPadding > kWidth) {
            ++rows_;
            left = leftOf(indent + 1);
        }
        if (cimClass != nullptr)
            addLinkedFrame(left, *cimClass, "class");
        else
            addMissingFrame(left, className);
        ++rows_;
        return row;
    }

    // From the left end of a row down, and to the beginning of another row below it.
    void connect(int from, int to, int indentOfTo) {
        const int x = indentOfTo * kIndent - kIndent / 2;
        lines_ += "M" + number(x) + " " + number(kRowHeight * from + kBoxHeight + 1) + "V" +
                  number(kRowHeight * to + kBoxHeight / 2 + 1) + "h" + number(kIndent / 2 + 1);
    }

    [[nodiscard]] std::string finished(const char* label) const {
        const int height = (rows_ - 1) * kRowHeight + kBoxHeight + 2;
        return "<figure>\n<figcaption>" + std::string(label) +
               "</figcaption>\n<svg viewBox=\"0 0 " + number(kWidth) + " " + number(height) +
               "\" width=" + number(kWidth) + " height=" + number(height) +
               " role=group aria-label=\"" + label + "\">\n<path d=\"" + lines_ + "\" />\n" +
               content_ + "</svg>\n</figure>\n";
    }

  private:
    static int leftOf(int indent) { return indent * kIndent + 1; }

    // Seven units a character, as monospaced fonts have at this size.
    static int lengthOf(std::string_view text) {
        const auto characters = Base::isUtf8(text) ? Base::countCharacters(text) : text.size();
        return static_cast<int>(characters) * 7;
    }

    [[nodiscard]] int top() const { return rows_ * kRowHeight + 1; }

    void addLinkedFrame(int left, const CimClass& cimClass, const char* kind) {
        content_ += "<a href=" + siblingPage(layout_, cimClass.name()) + ">";
        addFrame(left, cimClass.name(), kind);
        content_ += "</a>\n";
    }

    void addMissingFrame(int left, std::string_view className) {
        addFrame(left, className, "missing");
        content_ += "\n";
    }

    void addFrame(int left, std::string_view className, const char* kind) {
        const std::string name = shortened(className);
        const int width = std::clamp(lengthOf(name), 1, kWidth - left - 2 * kPadding - 1);
        content_ += "<rect class=" + std::string(kind) + " x=" + number(left) +
                    " y=" + number(top()) + " width=" + number(width + 2 * kPadding) +
                    " height=" + number(kBoxHeight) + " rx=4 />";
        addText(left + kPadding, name, width, kind);
    }

    // Returns where it ends.
    int addNoteAt(int left, std::string_view text) {
        const int width = std::clamp(lengthOf(text), 1, kWidth - left - 4);
        addText(left + 2, text, width, "note");
        return left + 2 + width;
    }

    // The length is given with the text, so that no font makes it longer than its box.
    void addText(int left, std::string_view text, int width, const char* kind) {
        content_ += "<text class=" + std::string(kind) + " x=" + number(left) +
                    " y=" + number(top() + 16) + " textLength=" + number(width) +
                    " lengthAdjust=spacingAndGlyphs>" + htmlText(text) + "</text>";
    }

    Layout layout_;
    int rows_ = 0;
    std::string lines_;
    std::string content_;
};

std::string andMore(std::size_t count) {
    return "and " + Base::withSeparators(count) + " more";
}

// The nearest last.
std::vector<const CimClass*> ancestorsOf(const CimClass& cimClass) {
    std::vector<const CimClass*> ancestors;
    for (const CimClass* each = cimClass.superclass(); each != nullptr; each = each->superclass())
        ancestors.push_back(each);
    std::ranges::reverse(ancestors);
    return ancestors;
}

std::string inheritancePicture(const CimClass& cimClass, const ClassRelations& relations,
                               Layout layout) {
    Drawing drawing(layout);
    const std::vector<const CimClass*> ancestors = ancestorsOf(cimClass);
    const std::size_t left = ancestors.size() - std::min(ancestors.size(), kMaxAncestors);
    int indent = 0;
    int row = left == 0 ? -1 : drawing.addNote(indent++, andMore(left) + " above");
    const auto addNext = [&](const CimClass& each, const char* kind) {
        // A superclass may be left out of the namespace, since its documents are too large.
        const bool isThere = !relations.nameSpace().findClass(each.name()).isNull();
        const int added =
            isThere ? drawing.addBox(indent, each, kind) : drawing.addMissing(indent, each.name());
        if (row >= 0)
            drawing.connect(row, added, indent);
        row = added;
        ++indent;
    };
    for (std::size_t place = left; place < ancestors.size(); ++place)
        addNext(*ancestors[place], "class");
    addNext(cimClass, "self");
    const std::vector<const CimClass*>& subclasses = relations.subclassesOf(cimClass);
    for (std::size_t place = 0; place < subclasses.size(); ++place) {
        const bool isTooMany = place == kMaxSubclasses && subclasses.size() > kMaxSubclasses + 1;
        const int added = isTooMany ? drawing.addNote(indent, andMore(subclasses.size() - place))
                                    : drawing.addBox(indent, *subclasses[place], "class");
        drawing.connect(row, added, indent);
        if (isTooMany)
            break;
    }
    return drawing.finished("Inheritance");
}

void addEnd(Drawing& drawing, int from, int indent, const CimProperty& reference,
            const ClassRelations& relations) {
    const TSKSmrPtr<CimClass> far = relations.nameSpace().findClass(reference.referencedClass());
    const int row = drawing.addRole(indent, std::string(reference.name()), far.get(),
                                    reference.referencedClass());
    drawing.connect(from, row, indent);
}

void addEnds(Drawing& drawing, int from, int indent,
             const std::vector<const CimProperty*>& references, std::size_t most,
             const ClassRelations& relations) {
    for (std::size_t place = 0; place < references.size(); ++place) {
        if (place == most) {
            const int note = drawing.addNote(indent, andMore(references.size() - place));
            drawing.connect(from, note, indent);
            return;
        }
        addEnd(drawing, from, indent, *references[place], relations);
    }
}

// Those of the class first, then those of its superclasses, the nearest first.
std::vector<AssociationEnd> endsOf(const CimClass& cimClass, const ClassRelations& relations) {
    std::vector<AssociationEnd> ends;
    for (const CimClass* each = &cimClass; each != nullptr; each = each->superclass()) {
        const std::vector<AssociationEnd>& more = relations.endsAt(*each);
        ends.insert(ends.end(), more.begin(), more.end());
    }
    return ends;
}

std::string associationsPicture(const CimClass& cimClass, const ClassRelations& relations,
                                Layout layout) {
    const std::vector<const CimProperty*> references = referencesOf(cimClass);
    const std::vector<AssociationEnd> ends = endsOf(cimClass, relations);
    if (references.empty() && ends.empty())
        return "";
    Drawing drawing(layout);
    const int self = drawing.addBox(0, cimClass, "self");
    addEnds(drawing, self, 1, references, kMaxAssociations, relations);
    for (std::size_t place = 0; place < ends.size(); ++place) {
        if (place == kMaxAssociations) {
            const int note = drawing.addNote(1, andMore(ends.size() - place));
            drawing.connect(self, note, 1);
            break;
        }
        const AssociationEnd& end = ends[place];
        const int row = drawing.addBox(1, *end.association, "link");
        drawing.connect(self, row, 1);
        std::vector<const CimProperty*> others = referencesOf(*end.association);
        std::erase(others, end.reference);
        addEnds(drawing, row, 2, others, kMaxFarEnds, relations);
    }
    return drawing.finished("Associations");
}

}  // namespace

std::string pictureOf(const CimClass& cimClass, const ClassRelations& relations, Layout layout) {
    return "<div class=pictures>\n" + inheritancePicture(cimClass, relations, layout) +
           associationsPicture(cimClass, relations, layout) + "</div>\n";
}

}  // namespace Pages
