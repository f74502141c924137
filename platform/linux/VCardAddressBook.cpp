#include "platform/linux/VCardAddressBook.h"

#include "platform/FileError.h"
#include "platform/FileReader.h"
#include "platform/linux/ContactCard.h"
#include "platform/linux/VCardSplitter.h"

#include <utility>

namespace quillbook {
namespace {

constexpr std::size_t greatestFile = 256 * fileBlockSize;

} // namespace

VCardAddressBook::VCardAddressBook(std::filesystem::path file) : file_(std::move(file)) {}

void VCardAddressBook::forEachContact(const std::function<void(const AddressBookContact&)>& visit) {
    FileReader reader(file_);
    VCardSplitter splitter([&](const std::string& card) { visit(contactOfCard(card)); });
    std::size_t read = 0;
    for (auto block = reader.next(); !block.empty(); block = reader.next()) {
        if (block.size() > greatestFile - read) {
            throw FileError(FileError::Action::read, file_, std::make_error_code(std::errc::file_too_large));
        }
        read += block.size();
        splitter.add({reinterpret_cast<const char*>(block.data()), block.size()});
    }
    splitter.finish();
}

} // namespace quillbook
