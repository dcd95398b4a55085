#include "ObjectManager/Comparison/ContractComparison.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Text.h"

namespace Comparison {

namespace {

// What a sequence of elements is part of.
enum class Side { kProperties, kRequest, kResponse };

template <typename Named>
const Named* find(const std::vector<Named>& all, std::string_view name) {
    const auto found = std::ranges::find(all, name, &Named::name);
    return found == all.end() ? nullptr : &*found;
}

// The names of the elements that are in both, in the order of the first.
std::vector<std::string> sharedNames(const std::vector<Element>& order,
                                     const std::vector<Element>& others) {
    std::vector<std::string> names;
    for (const Element& element : order) {
        if (find(others, element.name) != nullptr)
            names.push_back(element.name);
    }
    return names;
}

std::string lengthText(const std::optional<std::uint64_t>& length) {
    return length ? std::to_string(*length) : "any";
}

bool isRequired(const Element& element, Side side) {
    return side == Side::kProperties ? !element.mayBeAbsent : !element.mayBeNil;
}

class Comparer {
  public:
    std::vector<Change> compare(const Contract& before, const Contract& after) {
        compareText(Rule::kNamespaceChanged, "the XML namespace", before.targetNamespace,
                    after.targetNamespace);
        compareText(Rule::kAddressChanged, "the address of the service", before.address,
                    after.address);
        compareElements("", Side::kProperties, before.properties, after.properties);
        for (const Operation& operation : before.operations) {
            if (const Operation* const now = find(after.operations, operation.name))
                compareOperation(operation, *now);
            else
                add(Rule::kMethodRemoved, operation.name, "the method is gone");
        }
        for (const Operation& operation : after.operations) {
            if (find(before.operations, operation.name) == nullptr)
                add(Rule::kMethodAdded, operation.name, "the method is new");
        }
        return std::move(changes_);
    }

  private:
    void add(Rule rule, std::string member, std::string message) {
        Change change;
        change.rule = rule;
        change.member = std::move(member);
        change.message = std::move(message);
        changes_.push_back(std::move(change));
    }

    void compareText(Rule rule, const std::string& subject, const std::string& before,
                     const std::string& after) {
        if (before != after)
            add(rule, "", subject + " was " + before + " and is " + after);
    }

    void compareOperation(const Operation& before, const Operation& after) {
        compareMessage(before.name, Side::kRequest, before.input, after.input);
        compareMessage(before.name, Side::kResponse, before.output, after.output);
    }

    void compareMessage(const std::string& method, Side side, const Message& before,
                        const Message& after) {
        if (before.body != after.body) {
            const std::string subject = side == Side::kRequest ? "request" : "response";
            add(Rule::kMessageChanged, method,
                "the " + subject + " held " + bodyText(before) + " and holds " + bodyText(after));
        }
        compareElements(method + ".", side, before.elements, after.elements);
    }

    static std::string bodyText(const Message& message) {
        return message.body.empty() ? "nothing" : message.body;
    }

    void compareElements(const std::string& prefix, Side side, const std::vector<Element>& before,
                         const std::vector<Element>& after) {
        for (const Element& element : before) {
            if (const Element* const now = find(after, element.name))
                compareElement(prefix + element.name, side, element, *now);
            else
                addRemoved(prefix + element.name, side);
        }
        for (const Element& element : after) {
            if (find(before, element.name) == nullptr)
                addNew(prefix + element.name, side, isRequired(element, side));
        }
        const std::vector<std::string> order = sharedNames(before, after);
        const std::vector<std::string> now = sharedNames(after, before);
        if (order != now) {
            add(Rule::kOrderChanged, prefix.substr(0, prefix.size() - (prefix.empty() ? 0 : 1)),
                "the order was " + Base::joined(order, ", ") + " and is " +
                    Base::joined(now, ", "));
        }
    }

    void addRemoved(const std::string& member, Side side) {
        if (side == Side::kProperties)
            add(Rule::kPropertyRemoved, member, "the property is gone");
        else if (side == Side::kRequest)
            add(Rule::kParameterRemoved, member, "the request has no such parameter any more");
        else
            add(Rule::kParameterRemoved, member, "the response has no such value any more");
    }

    void addNew(const std::string& member, Side side, bool isNeeded) {
        if (side == Side::kRequest)
            add(Rule::kParameterAdded, member, "the request has a new parameter");
        else if (side == Side::kResponse)
            add(Rule::kResultAdded, member, "the response has a new value");
        else if (isNeeded)
            add(Rule::kRequiredAdded, member, "the property is new, and a key or required");
        else
            add(Rule::kPropertyAdded, member, "the property is new");
    }

    void compareElement(const std::string& member, Side side, const Element& before,
                        const Element& after) {
        if (before.isArray != after.isArray)
            add(Rule::kArrayChanged, member, after.isArray ? "is now an array" : "is no array now");
        const bool wasRequired = isRequired(before, side);
        if (!wasRequired && isRequired(after, side))
            add(Rule::kRequiredAdded, member, "must have a value now");
        if (wasRequired && !isRequired(after, side))
            add(Rule::kRequiredRemoved, member, "may be without a value now");
        if (before.type != after.type) {
            add(Rule::kTypeChanged, member,
                "the type was " + typeText(before) + " and is " + typeText(after));
            return;
        }
        compareValues(member, before.values, after.values);
        compareLength(member, before.maxLength, after.maxLength);
    }

    // A definition that is no name is too long for a message.
    static std::string typeText(const Element& element) {
        return element.type.starts_with('<') ? "a structure" : element.type;
    }

    void compareValues(const std::string& member, const ValueSet& before, const ValueSet& after) {
        if (!after.includes(before)) {
            add(Rule::kValuesNarrowed, member,
                "values are not allowed any more: " + before.textOfThoseNotIn(after));
        }
        if (!before.includes(after)) {
            add(Rule::kValuesWidened, member,
                "values are allowed in addition: " + after.textOfThoseNotIn(before));
        }
    }

    void compareLength(const std::string& member, const std::optional<std::uint64_t>& before,
                       const std::optional<std::uint64_t>& after) {
        if (before == after)
            return;
        const bool isLowered = after && (!before || *after < *before);
        add(isLowered ? Rule::kLengthLowered : Rule::kLengthRaised, member,
            "the maximum length was " + lengthText(before) + " and is " + lengthText(after));
    }

    std::vector<Change> changes_;
};

}  // namespace

std::vector<Change> compare(const Contract& before, const Contract& after) {
    return Comparer().compare(before, after);
}

}  // namespace Comparison
