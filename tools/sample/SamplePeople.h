#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillbook::sample {

enum class HairStyle { none, brief, bun, longHair, curls, parting };

/// How a person's portrait is drawn. Colours are 0xRRGGBB.
struct PortraitLook {
    unsigned background = 0;
    unsigned skin = 0;
    unsigned hair = 0;
    unsigned clothes = 0;
    HairStyle style = HairStyle::brief;
    bool hasGlasses = false;
    bool hasBeard = false;
};

struct SamplePerson {
    std::string key; ///< What the conversations call the person.
    std::string givenName;
    std::string familyName;
    std::string organization;
    std::string address; ///< As the messages know it: a phone number or an e-mail address.
    std::string country;
    std::string addressInBook; ///< The same address as a person would write it down; empty if the person is
                               ///< in no address book.
    bool hasPicture = false;
    PortraitLook look;
};

const std::vector<SamplePerson>& samplePeople();

/// There must be such a person.
const SamplePerson& samplePerson(std::string_view key);

} // namespace quillbook::sample
