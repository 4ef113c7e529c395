#include "IptcNames.h"

#include <algorithm>
#include <array>

namespace hazelmark {

namespace {

constexpr std::array kNames = {
    IptcName{3, "ObjectTypeReference", false},
    IptcName{4, "ObjectAttributeReference", true},
    IptcName{5, "ObjectName", false},
    IptcName{7, "EditStatus", false},
    IptcName{8, "EditorialUpdate", false},
    IptcName{10, "Urgency", false},
    IptcName{12, "SubjectReference", true},
    IptcName{15, "Category", false},
    IptcName{20, "SupplementalCategory", true},
    IptcName{22, "FixtureIdentifier", false},
    IptcName{25, "Keywords", true},
    IptcName{26, "ContentLocationCode", true},
    IptcName{27, "ContentLocationName", true},
    IptcName{30, "ReleaseDate", false},
    IptcName{35, "ReleaseTime", false},
    IptcName{37, "ExpirationDate", false},
    IptcName{38, "ExpirationTime", false},
    IptcName{40, "SpecialInstructions", false},
    IptcName{42, "ActionAdvised", false},
    IptcName{45, "ReferenceService", true},
    IptcName{47, "ReferenceDate", true},
    IptcName{50, "ReferenceNumber", true},
    IptcName{55, "DateCreated", false},
    IptcName{60, "TimeCreated", false},
    IptcName{62, "DigitalCreationDate", false},
    IptcName{63, "DigitalCreationTime", false},
    IptcName{65, "OriginatingProgram", false},
    IptcName{70, "ProgramVersion", false},
    IptcName{75, "ObjectCycle", false},
    IptcName{80, "Byline", true},
    IptcName{85, "BylineTitle", true},
    IptcName{90, "City", false},
    IptcName{92, "SubLocation", false},
    IptcName{95, "Province/State", false},
    IptcName{100, "Country/PrimaryLocationCode", false},
    IptcName{101, "Country/PrimaryLocationName", false},
    IptcName{103, "OriginalTransmissionReference", false},
    IptcName{105, "Headline", false},
    IptcName{110, "Credit", false},
    IptcName{115, "Source", false},
    IptcName{116, "CopyrightNotice", false},
    IptcName{118, "Contact", true},
    IptcName{120, "Caption/Abstract", false},
    IptcName{122, "Writer/Editor", true},
    IptcName{130, "ImageType", false},
    IptcName{131, "ImageOrientation", false},
    IptcName{135, "LanguageIdentifier", false},
};

} // namespace

const IptcName *iptcName(uint16_t dataSet)
{
    const auto found =
        std::find_if(kNames.begin(), kNames.end(), [=](const IptcName &name) { return name.dataSet == dataSet; });
    return found == kNames.end() ? nullptr : &*found;
}

} // namespace hazelmark
