#include "tools/sample/MediaDocuments.h"

#include "tools/sample/SamplePeople.h"
#include "tools/sample/VCardWriter.h"

#include <fmt/format.h>

namespace quillbook::sample {
namespace {

Data bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

/// ISO 32000-1, 7.3.4.2: brackets and backslashes of a literal string are escaped.
std::string literal(std::string_view text) {
    std::string result = "(";
    for (const char letter : text) {
        if (letter == '(' || letter == ')' || letter == '\\') result += '\\';
        result += letter;
    }
    return result + ")";
}

std::string pageContents(std::string_view heading, const std::vector<std::string>& lines) {
    std::string drawing = "0.18 0.36 0.38 rg 0 545 420 50 re f\n"
                          "BT /F2 20 Tf 1 1 1 rg 36 562 Td " +
                          literal(heading) +
                          " Tj ET\n"
                          "BT /F1 11 Tf 0.1 0.1 0.1 rg 16 TL 36 510 Td\n";
    for (const std::string& line : lines)
        drawing += literal(line) + " Tj T*\n";
    return drawing + "ET\n";
}

} // namespace

Data onePagePDF(std::string_view heading, const std::vector<std::string>& lines) {
    const std::string contents = pageContents(heading, lines);
    const std::vector<std::string> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 420 595] /Contents 4 0 R /Resources << /Font << /F1 5 0 "
        "R /F2 6 0 R >> >> >>",
        fmt::format("<< /Length {} >>\nstream\n{}endstream", contents.size(), contents),
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold /Encoding /WinAnsiEncoding >>",
        fmt::format("<< /Title {} /CreationDate (D:20240303192200Z) >>", literal(heading))};
    std::string file = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";
    std::string references;
    for (std::size_t index = 0; index < objects.size(); ++index) {
        references += fmt::format("{:010} 00000 n \n", file.size());
        file += fmt::format("{} 0 obj\n{}\nendobj\n", index + 1, objects[index]);
    }
    const std::size_t table = file.size();
    file += fmt::format("xref\n0 {}\n0000000000 65535 f \n{}", objects.size() + 1, references);
    file += fmt::format("trailer\n<< /Size {} /Root 1 0 R /Info 7 0 R >>\nstartxref\n{}\n%%EOF\n",
                        objects.size() + 1, table);
    return bytesOf(file);
}

Data bookingPDF() {
    return onePagePDF("Lakeside Holidays",
                      {"Booking no. LH-2024-0720", "", "Dear Ms Lindqvist,", "",
                       "we are glad to have you at the House by the Alders:", "",
                       "    Arrival: Saturday, July 20, 2024, from 2 pm",
                       "    Departure: Saturday, July 27, 2024, until 10 am",
                       "    Guests: 6 (one of them from July 21)",
                       "    Boat: one canoe, two oars (please bring both back)", "",
                       "The key hangs behind the watering can. Firewood is in the shed;",
                       "whoever is up first may greet the heron.", "", "With kind regards", "Edda Seeberg"});
}

Data costsCSV() {
    return bytesOf("What,Who paid,Amount,Shared by\r\n"
                   "House by the lake,Maya,1260.00,6\r\n"
                   "Canoe,Tom,140.00,6\r\n"
                   "\"Groceries, first trip\",Priya,186.35,6\r\n"
                   "Train tickets,Robin,92.40,2\r\n"
                   "\"\"\"Emotional support marshmallows\"\"\",Tom,17.80,1\r\n"
                   "Plum cake,Ruth,0.00,6\r\n");
}

Data packingListText() {
    return bytesOf("PACKING LIST – LAKE HOUSE, JULY 20–27\n\n"
                   "Maya     spreadsheet (printed), first-aid kit no. 2, good coffee\n"
                   "Tom      canoe, rope, more rope, whale songs\n"
                   "Ruth     plum cake, reading glasses, wisdom\n"
                   "Priya    first-aid kit no. 1, the good knife, swimsuit\n"
                   "Jonas    guitar, one (1) sock\n"
                   "Robin    cameras, chargers, board game with Gerald\n\n"
                   "Everybody: sun hat, rain jacket, patience\n");
}

Data bookClubNotesText() {
    return bytesOf(
        "Thursday, October 13\n\n- The lighthouse is not a symbol (Béla). It is obviously a symbol (everyone "
        "else).\n"
        "- Nobody understands the uncle. Selma: that is the point of him.\n"
        "- Chapter nine: 4 in favour, 1 against, 1 asleep.\n- Next time: something with a garden?\n");
}

Data landladyCard() {
    const SamplePerson& person = samplePerson("landlady");
    return bytesOf(vCardLine("BEGIN:VCARD") + vCardLine("VERSION:3.0") +
                   vCardLine("N:" + person.familyName + ";" + person.givenName + ";;;") +
                   vCardLine("FN:" + person.givenName + " " + person.familyName) +
                   vCardLine("ORG:" + person.organization) +
                   vCardLine("EMAIL;TYPE=INTERNET:" + person.address) + vCardLine("END:VCARD"));
}

Data routeText() {
    return bytesOf("From the station: left, over the little bridge, then always along the water.\n"
                   "After the third bench the red gate. If you see the church, you have gone too far.\n");
}

} // namespace quillbook::sample
