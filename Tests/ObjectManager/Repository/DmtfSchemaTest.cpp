// The DMTF's schema, where it is there, and the sample model. All numbers and lists of names are
// counted in the MOF files by hand.

#include <cctype>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/RepositoryText.h"

namespace {

namespace fs = std::filesystem;

std::string withCase(std::string name, int (*change)(int)) {
    for (char& letter : name)
        letter = static_cast<char>(change(static_cast<unsigned char>(letter)));
    return name;
}

template <typename Iterator>
int count(const Iterator& iterator) {
    int number = 0;
    for (; iterator->hasCurrent(); iterator->advance())
        ++number;
    return number;
}

// "NAME NAME", without values.
std::string qualifierNames(const urma::IQualified& definition, bool includePropagated) {
    std::string names;
    const auto qualifiers = definition.getQualifiers(includePropagated);
    for (; qualifiers->hasCurrent(); qualifiers->advance())
        names += (names.empty() ? "" : " ") + std::string(qualifiers->current().getName().data());
    return names;
}

std::string keysOf(const ITeskClass& cimClass) {
    std::string names;
    const auto properties = cimClass.getProperties(true);
    for (; properties->hasCurrent(); properties->advance()) {
        const urma::IQualifier* const key = properties->current().getQualifier("Key", true);
        if (key != nullptr && key->getValue()->toBoolean())
            names +=
                (names.empty() ? "" : " ") + std::string(properties->current().getName().data());
    }
    return names;
}

std::string valueOf(const urma::IQualified& definition, const char* qualifier) {
    return textOf(definition.getQualifier(qualifier, true)->getValue().get());
}

class DmtfSchema : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        const std::string file = cimSchemaFile();
        if (!file.empty())
            loaded_ = Loading::loadRepository({{.name = "root/cimv2", .paths = {file}}}, {}, {});
    }
    static void TearDownTestSuite() { loaded_ = {}; }

    void SetUp() override {
        if (cimSchemaFile().empty())
            GTEST_SKIP() << kNoCimSchema;
        ASSERT_TRUE(loaded_.repository);
    }

    static TSKSmrPtr<ITeskClass> classNamed(const std::string& name) {
        return loaded_.repository->getClass("root/cimv2", TSKString(name));
    }

    // Expects so many properties and methods with what is inherited.
    static void expectMembers(const char* name, int properties, int methods) {
        const TSKSmrPtr<ITeskClass> found = classNamed(name);
        EXPECT_EQ(count(found->getProperties(true)), properties);
        EXPECT_EQ(count(found->getMethods(true)), methods);
    }

    static inline Loading::LoadedRepository loaded_;
};

TEST_F(DmtfSchema, LoadsWithoutDiagnostics) {
    EXPECT_TRUE(loaded_.diagnostics.empty()) << loaded_.diagnostics.front().toString();
    EXPECT_EQ(loaded_.repository->countClasses(), 1438U);
}

// Each class stands in a file of its name, in a directory of its subject.
TEST_F(DmtfSchema, EveryClassIsFoundInAnyCase) {
    int classes = 0;
    const fs::path directory = fs::path(cimSchemaFile()).parent_path();
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.path().extension() != ".mof" ||
            fs::equivalent(entry.path().parent_path(), directory))
            continue;
        const std::string name = entry.path().stem();
        ASSERT_TRUE(classNamed(name)) << name;
        EXPECT_EQ(classNamed(name)->getName(), name.c_str());
        EXPECT_EQ(classNamed(withCase(name, std::tolower)), classNamed(name)) << name;
        EXPECT_EQ(classNamed(withCase(name, std::toupper)), classNamed(name)) << name;
        ++classes;
    }
    EXPECT_EQ(classes, 1438);
}

// Documents insert descriptions as they are.
TEST_F(DmtfSchema, NoDescriptionHoldsMarkup) {
    for (const TSKSmrPtr<Repository::CimClass>& found :
         loaded_.repository->namespaces().at(0).classes()) {
        for (const Repository::CimProperty* const property : found->properties()) {
            const urma::IQualifier* const text = property->getQualifier("Description", true);
            if (text != nullptr && text->hasValue()) {
                EXPECT_EQ(text->getValue()->toString().find('<'), -1)
                    << found->name() << "." << property->name();
            }
        }
    }
    const std::string text =
        valueOf(propertyOf(*classNamed("CIM_ManagedElement"), "InstanceID"), "Description");
    EXPECT_NE(text.find("Where &lt;OrgID&gt; and &lt;LocalID&gt; are separated"),
              std::string::npos);
}

// InstanceID, Caption, Description, ElementName.
TEST_F(DmtfSchema, ManagedElementStandsAtTheTop) {
    expectMembers("CIM_ManagedElement", 4, 0);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_ManagedElement");
    EXPECT_EQ(keysOf(*found), "");
    EXPECT_EQ(qualifierNames(*found, true), "Abstract Version UMLPackagePath Description");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "Caption"), true), "Description MaxLen");
    EXPECT_EQ(valueOf(propertyOf(*found, "Caption"), "MaxLen"), "64");
}

// 4 properties of ManagedElement, 10 of ManagedSystemElement, none of LogicalElement, 7 of
// EnabledLogicalElement, 8 of System of which one overrides, 5 of ComputerSystem of which one
// overrides. A method of EnabledLogicalElement, a method of its own.
TEST_F(DmtfSchema, ComputerSystemListsWhatItInherits) {
    expectMembers("CIM_ComputerSystem", 4 + 10 + 7 + 7 + 4, 1 + 1);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_ComputerSystem");
    EXPECT_EQ(propertiesOf(*found, true),
              "AvailableRequestedStates Caption CommunicationStatus CreationClassName Dedicated "
              "Description DetailedStatus ElementName EnabledDefault EnabledState HealthState "
              "IdentifyingDescriptions InstallDate InstanceID Name NameFormat OperatingStatus "
              "OperationalStatus OtherDedicatedDescriptions OtherEnabledState OtherIdentifyingInfo "
              "PowerManagementCapabilities PrimaryOwnerContact PrimaryOwnerName PrimaryStatus "
              "RequestedState ResetCapability Roles Status StatusDescriptions "
              "TimeOfLastStateChange TransitioningToState");
    EXPECT_EQ(propertiesOf(*found, false),
              "Dedicated NameFormat OtherDedicatedDescriptions PowerManagementCapabilities "
              "ResetCapability");
    EXPECT_EQ(methodsOf(*found, true), "RequestStateChange SetPowerState");
    EXPECT_EQ(methodsOf(*found, false), "SetPowerState");
    EXPECT_EQ(keysOf(*found), "CreationClassName Name");
}

TEST_F(DmtfSchema, ComputerSystemHasPropagatedQualifiersAndNoRestrictedOnes) {
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_ComputerSystem");
    // Abstract is the superclass's alone.
    EXPECT_EQ(qualifierNames(*found, true), "Version UMLPackagePath Description");
    EXPECT_EQ(valueOf(*found, "Version"), "2.36.0");
    // NameFormat overrides System's, which has a MaxLen.
    EXPECT_EQ(qualifierNames(propertyOf(*found, "NameFormat"), false),
              "Override Description ValueMap");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "NameFormat"), true),
              "Override Description ValueMap MaxLen");
    EXPECT_EQ(valueOf(propertyOf(*found, "NameFormat"), "MaxLen"), "64");
    // Name is System's own, with a MaxLen that hides ManagedSystemElement's of 1024.
    EXPECT_EQ(qualifierNames(propertyOf(*found, "Name"), false), "Key Override Description MaxLen");
    EXPECT_EQ(valueOf(propertyOf(*found, "Name"), "MaxLen"), "256");
}

TEST_F(DmtfSchema, ParametersKeepTheirOrderAndQualifiers) {
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_ComputerSystem");
    const urma::IMethodDef& method = methodOf(*found, "RequestStateChange");
    EXPECT_EQ(textOf(method.getReturnType()), "uint32");
    EXPECT_EQ(parametersOf(method), "RequestedState Job TimeoutPeriod");
    const urma::IParameterDef& job = parameterOf(method, "Job");
    EXPECT_EQ(textOf(job.getType()), "ref");
    EXPECT_EQ(qualifierNames(job, true), "IN OUT Description");
    EXPECT_EQ(valueOf(job, "In"), "false");
    EXPECT_EQ(valueOf(job, "Out"), "true");
    EXPECT_EQ(valueOf(parameterOf(method, "RequestedState"), "ValueMap"),
              "{2, 3, 4, 6, 7, 8, 9, 10, 11, .., 32768..65535}");
    EXPECT_EQ(textOf(parameterOf(method, "TimeoutPeriod").getType()), "datetime");
}

// 21 properties down to EnabledLogicalElement, 17 of LogicalDevice, 20 of StorageExtent of which
// one overrides, 3 of StorageVolume that all override. A method of EnabledLogicalElement, 7 of
// LogicalDevice.
TEST_F(DmtfSchema, StorageVolumeStandsSixClassesBelowTheTop) {
    expectMembers("CIM_StorageVolume", 21 + 17 + 19, 1 + 7);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_StorageVolume");
    EXPECT_EQ(propertiesOf(*found, false), "Name NameFormat NameNamespace");
    EXPECT_EQ(keysOf(*found), "CreationClassName DeviceID SystemCreationClassName SystemName");
    EXPECT_EQ(methodsOf(*found, true),
              "RequestStateChange SetPowerState Reset EnableDevice OnlineDevice QuiesceDevice "
              "SaveProperties RestoreProperties");
    // Name is overridden by StorageExtent, too; MaxLen comes from ManagedSystemElement.
    const urma::IPropertyDef& name = propertyOf(*found, "Name");
    EXPECT_EQ(qualifierNames(name, false),
              "Override Description MappingStrings ModelCorrespondence");
    EXPECT_EQ(qualifierNames(name, true),
              "Override Description MappingStrings ModelCorrespondence MaxLen");
    EXPECT_EQ(valueOf(name, "MaxLen"), "1024");
    EXPECT_EQ(valueOf(name, "MappingStrings"), "{ANSI|T10|SCSI SPC-3|8.6}");
    EXPECT_EQ(valueOf(propertyOf(*found, "SystemName"), "Propagated"), "CIM_System.Name");
}

// 2 references of Component, overridden by SystemComponent and again by SystemDevice.
TEST_F(DmtfSchema, SystemDeviceIsAnAssociation) {
    expectMembers("CIM_SystemDevice", 2, 0);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_SystemDevice");
    EXPECT_EQ(keysOf(*found), "GroupComponent PartComponent");
    EXPECT_EQ(qualifierNames(*found, true),
              "Association Aggregation Composition Version UMLPackagePath Description");
    const urma::IPropertyDef& group = propertyOf(*found, "GroupComponent");
    EXPECT_EQ(textOf(group.getType()), "ref");
    EXPECT_EQ(qualifierNames(group, true), "Aggregate Override Min Max Description Key");
    EXPECT_EQ(group.getQualifier("Key", false), nullptr);
    EXPECT_EQ(qualifierNames(propertyOf(*found, "PartComponent"), true),
              "Override Weak Description Key");
    EXPECT_EQ(dynamic_cast<const Repository::CimProperty&>(group).referencedClass(), "CIM_System");
}

// 2 references of Dependency, overridden; 3 properties of its own.
TEST_F(DmtfSchema, BasedOnIsAnAssociationWithProperties) {
    expectMembers("CIM_BasedOn", 2 + 3, 0);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_BasedOn");
    EXPECT_EQ(propertiesOf(*found, true),
              "Antecedent Dependent EndingAddress OrderIndex StartingAddress");
    EXPECT_EQ(keysOf(*found), "Antecedent Dependent");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "Antecedent"), true), "Override Description Key");
}

// 8 properties of Indication, 3 of InstIndication, one of its own.
TEST_F(DmtfSchema, InstModificationIsAnIndication) {
    expectMembers("CIM_InstModification", 8 + 3 + 1, 0);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_InstModification");
    EXPECT_EQ(keysOf(*found), "");
    EXPECT_EQ(qualifierNames(*found, true), "Indication Version UMLPackagePath Description");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "SourceInstance"), false),
              "Required Description EmbeddedObject");
    EXPECT_EQ(textOf(propertyOf(*found, "PreviousInstance").getType()), "string");
}

// 14 properties down to LogicalElement, 21 of Job, 7 of ConcreteJob of which two override. A method
// of Job, 3 of ConcreteJob.
TEST_F(DmtfSchema, ConcreteJobMakesAnInheritedPropertyItsKey) {
    expectMembers("CIM_ConcreteJob", 14 + 21 + 5, 1 + 3);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_ConcreteJob");
    EXPECT_EQ(keysOf(*found), "InstanceID");
    EXPECT_EQ(methodsOf(*found, true), "KillJob RequestStateChange GetError GetErrors");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "InstanceID"), true), "Key Override Description");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "Name"), true),
              "Required Override Description MaxLen");
}

// 38 properties down to LogicalDevice, 6 of Sensor, 23 of NumericSensor, 19 of VoltageSensor that
// all override. 8 methods down to LogicalDevice, 2 of NumericSensor.
TEST_F(DmtfSchema, VoltageSensorOverridesManyProperties) {
    expectMembers("CIM_VoltageSensor", 38 + 6 + 23, 8 + 2);
    const TSKSmrPtr<ITeskClass> found = classNamed("CIM_VoltageSensor");
    EXPECT_EQ(count(found->getProperties(false)), 19);
    EXPECT_EQ(keysOf(*found), "CreationClassName DeviceID SystemCreationClassName SystemName");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "SensorType"), true),
              "Deprecated Override Description ValueMap Values ModelCorrespondence");
    EXPECT_EQ(qualifierNames(propertyOf(*found, "CurrentReading"), true),
              "Deprecated Override MappingStrings Description");
    EXPECT_EQ(valueOf(propertyOf(*found, "CurrentReading"), "MappingStrings"),
              "{MIF.DMTF|Voltage Probe|001.5}");
    // NumericSensor's Tolerance is deprecated otherwise, which does not reach this one.
    EXPECT_EQ(qualifierNames(propertyOf(*found, "Tolerance"), true),
              "Deprecated Override MappingStrings Description");
    EXPECT_EQ(valueOf(propertyOf(*found, "Tolerance"), "Deprecated"), "{No value}");
}

TEST(SampleModel, LoadsIntoBothNamespacesWithoutDiagnostics) {
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{"root/cimv2", {MODELS_DIRECTORY "/cimv2/cimv2.mof"}},
                                 {"interop", {MODELS_DIRECTORY "/interop/interop.mof"}}},
                                {MODELS_DIRECTORY}, {});
    EXPECT_TRUE(loaded.diagnostics.empty()) << loaded.diagnostics.front().toString();
    ASSERT_TRUE(loaded.repository);
    EXPECT_EQ(loaded.repository->findNamespace("root/cimv2")->classes().size(), 38U);
    EXPECT_EQ(loaded.repository->findNamespace("interop")->classes().size(), 21U);
    EXPECT_TRUE(loaded.repository->getClass("root/cimv2", "CIM_StorageVolume"));
    EXPECT_TRUE(loaded.repository->getClass("interop", "CIM_RegisteredProfile"));
    EXPECT_TRUE(loaded.repository->getClass("interop", "CIM_StorageVolume").isNull());
}

// What the model's comment says: the values stay those of the superclass.
TEST(SampleModel, AnOverrideRestatesOnlyWhatItChanges) {
    const Loading::LoadedRepository loaded = Loading::loadRepository(
        {{"root/cimv2", {MODELS_DIRECTORY "/cimv2/cimv2.mof"}}}, {MODELS_DIRECTORY}, {});
    const TSKSmrPtr<ITeskClass> volume =
        loaded.repository->getClass("root/cimv2", "CIM_StorageVolume");
    const TSKSmrPtr<ITeskClass> extent =
        loaded.repository->getClass("root/cimv2", "CIM_StorageExtent");
    const urma::IPropertyDef& overriding = propertyOf(*volume, "NameNamespace");
    EXPECT_EQ(overriding.getQualifier("Values", false), nullptr);
    EXPECT_EQ(overriding.getQualifier("Values", true),
              propertyOf(*extent, "NameNamespace").getQualifier("Values", false));
}

}  // namespace
