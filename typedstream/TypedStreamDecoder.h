#pragma once

#include "typedstream/Archivable.h"
#include "typedstream/TypedStreamDecoderError.h"
#include "typedstream/TypedStreamReader.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

namespace quillbook {

/// Reads the typed archives of NSArchiver ("streamtyped", version 4; docs/formats/typed-archive.md) from
/// front to back, without rebuilding the graph of objects. Forgiving: an unknown type becomes a byte, a
/// broken reference nothing. The archive is not trusted: the call stack does not grow with it, time and
/// memory stay in proportion to its length.
class TypedStreamDecoder {
public:
    /// The archive's items in order. Throws TypedStreamDecoderError, and then nothing of what was read is
    /// kept.
    static std::vector<typedstream::Archivable> decode(std::span<const std::uint8_t> archive);

private:
    enum class Embedded { no, yes };

    /// The values of one type list on their way in.
    struct ValuePass {
        const typedstream::TypeList* types;
        std::size_t next = 0;
        std::vector<typedstream::Object> values;
        bool sawObject = false;
    };

    /// A new chain, from the most derived class to the root, or the index of a class seen before.
    using ClassChain = std::vector<typedstream::Class>;
    using ClassOrReference = std::variant<ClassChain, std::size_t>;

    explicit TypedStreamDecoder(std::span<const std::uint8_t> archive);

    void readHeader();
    const typedstream::TypeList* readTypes(Embedded embedded);
    const typedstream::TypeList* readNewTypes(Embedded embedded);
    const typedstream::TypeList* readReferencedTypes(Embedded embedded);
    void noteEmbedded(std::size_t index);

    ClassOrReference readClass();
    const typedstream::Archivable* readObject();

    std::optional<typedstream::Archivable> readValues(const typedstream::TypeList& types);
    void readPlainValue(const typedstream::Type& type, std::vector<typedstream::Object>& values);
    std::optional<typedstream::Archivable> readObjectValue(ValuePass& pass);
    std::optional<typedstream::Archivable> settle(ValuePass& pass);
    std::optional<typedstream::Archivable> fillSlot(std::size_t slot,
                                                    std::vector<typedstream::Object>& values);

    const typedstream::Archivable* objectAt(std::size_t index) const;
    void spend(std::uint64_t bytes);

    typedstream::TypedStreamReader stream_;
    std::deque<typedstream::TypeList>
        typesTable_; ///< A deque, so that a list stays in its place while others join.
    std::vector<typedstream::Archivable> objectTable_;
    std::unordered_set<std::uint32_t> seenEmbeddedTypes_;
    std::optional<std::size_t> placeholder_;
    std::uint64_t copyBudget_; ///< Bytes that values may still take which cost the archive none.
};

} // namespace quillbook
