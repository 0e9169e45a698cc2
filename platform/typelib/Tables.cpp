#include "platform/typelib/Tables.h"

#include <cstring>
#include <type_traits>

namespace wnplatform::typelib {
namespace {

constexpr char kMagic[8] = {'W', 'N', 'T', 'Y', 'P', 'E', 'S', '\x1A'};
// Raised with each change of a row.
constexpr std::uint32_t kVersion = 1;

struct Header {
    char magic[8];
    std::uint32_t version;
    std::uint32_t rows[5];
    std::uint32_t textBytes;
};

// The tables in the order of the header's counts and of the blob.
template <class T, class Visit>
void EachTable(T& tables, Visit visit) {
    visit(tables.libraries);
    visit(tables.types);
    visit(tables.methods);
    visit(tables.parameters);
    visit(tables.implemented);
}

// Takes the next bytes of a blob; what is wanted beyond its end spoils the whole.
class Reader {
public:
    explicit Reader(std::string_view blob) : m_rest(blob) {}

    void Take(void* to, std::size_t bytes) {
        m_ok = m_ok && bytes <= m_rest.size();
        if (!m_ok || bytes == 0) return;
        std::memcpy(to, m_rest.data(), bytes);
        m_rest.remove_prefix(bytes);
    }
    template <class Row>
    void TakeRows(std::vector<Row>& rows, std::size_t count) {
        m_ok = m_ok && count <= m_rest.size() / sizeof(Row);
        rows.resize(m_ok ? count : 0);
        Take(rows.data(), rows.size() * sizeof(Row));
    }
    std::string_view Rest() const noexcept { return m_rest; }
    bool Ok() const noexcept { return m_ok; }

private:
    std::string_view m_rest;
    bool m_ok = true;
};

class Check {
public:
    explicit Check(const Tables& tables) : m_tables(tables) {}

    bool All() const {
        if (m_tables.libraries.empty() || m_tables.texts.empty() || m_tables.texts.back() != '\0') return false;
        std::uint32_t firstType = 0;
        for (const LibraryRow& library : m_tables.libraries) {
            if (&library == m_tables.libraries.data() && library.firstType != 0) return false;
            if (library.firstType < firstType || library.firstType > m_tables.types.size()) return false;
            if (!IsText(library.name) || !IsText(library.help)) return false;
            firstType = library.firstType;
        }
        for (const TypeRow& type : m_tables.types) {
            if (!IsText(type.name) || !IsText(type.help)) return false;
            if (type.isClass != 0 ? !IsClass(type) : !IsInterfaceRow(type)) return false;
        }
        for (const MethodRow& method : m_tables.methods) {
            if (!IsMethod(method)) return false;
        }
        for (const ParameterRow& parameter : m_tables.parameters) {
            if (!IsParameter(parameter)) return false;
        }
        for (const ImplementedRow& implemented : m_tables.implemented) {
            if (!IsInterface(implemented.type)) return false;
        }
        return true;
    }

private:
    bool IsText(TextPlace place) const { return place < m_tables.texts.size(); }
    bool IsInterface(std::uint32_t type) const {
        return type < m_tables.types.size() && m_tables.types[type].isClass == 0;
    }
    template <class Row>
    static bool IsPart(const std::vector<Row>& table, std::uint32_t first, std::uint32_t count) {
        return first <= table.size() && count <= table.size() - first;
    }

    bool IsClass(const TypeRow& type) const {
        return type.base == kNone && type.count <= 0xFFFF && IsPart(m_tables.implemented, type.first, type.count);
    }

    bool IsInterfaceRow(const TypeRow& type) const {
        unsigned slots = 0;
        if (type.base != kNone) {
            // Bases stand first, so that none leads back to itself.
            if (type.base >= static_cast<std::size_t>(&type - m_tables.types.data())) return false;
            if (!IsInterface(type.base)) return false;
            slots = m_tables.types[type.base].slots;
        }
        if (!IsPart(m_tables.methods, type.first, type.count)) return false;
        if (type.slots > kMostSlots || type.slots != slots + type.count) return false;
        for (std::uint32_t i = 0; i < type.count; ++i) {
            if (m_tables.methods[type.first + i].slot != slots + i) return false;
        }
        return true;
    }

    bool IsMethod(const MethodRow& method) const {
        if (!IsText(method.name) || !IsText(method.help) || method.parameterCount > kMostParameters) return false;
        if (method.slot >= kMostSlots) return false;
        return IsPart(m_tables.parameters, method.firstParameter, method.parameterCount);
    }

    bool IsParameter(const ParameterRow& parameter) const {
        const bool refers = parameter.vt == VT_USERDEFINED;
        if (!IsText(parameter.name) || parameter.pointers > 2) return false;
        if (refers ? !IsInterface(parameter.target) || parameter.pointers == 0 : parameter.target != kNone) {
            return false;
        }
        return !parameter.IsResult() || parameter.Depth() == 1;
    }

    const Tables& m_tables;
};

}  // namespace

std::string Tables::Blob() const {
    Header header{};
    std::memcpy(header.magic, kMagic, sizeof(kMagic));
    header.version = kVersion;
    std::uint32_t* count = header.rows;
    EachTable(*this, [&](const auto& rows) { *count++ = static_cast<std::uint32_t>(rows.size()); });
    header.textBytes = static_cast<std::uint32_t>(texts.size());
    std::string blob(reinterpret_cast<const char*>(&header), sizeof(header));
    EachTable(*this, [&](const auto& rows) {
        using Row = typename std::decay_t<decltype(rows)>::value_type;
        static_assert(std::has_unique_object_representations_v<Row>, "no byte without a meaning");
        blob.append(reinterpret_cast<const char*>(rows.data()), rows.size() * sizeof(Row));
    });
    return blob + texts;
}

std::optional<Tables> Tables::FromBlob(std::string_view blob) {
    Reader reader(blob);
    Header header{};
    reader.Take(&header, sizeof(header));
    if (!reader.Ok() || std::memcmp(header.magic, kMagic, sizeof(kMagic)) != 0 || header.version != kVersion) {
        return std::nullopt;
    }
    Tables tables;
    const std::uint32_t* count = header.rows;
    EachTable(tables, [&](auto& rows) { reader.TakeRows(rows, *count++); });
    tables.texts = reader.Rest();
    if (!reader.Ok() || tables.texts.size() != header.textBytes || !Check(tables).All()) return std::nullopt;
    return tables;
}

TextPlace Tables::Add(std::string_view text) {
    // The first one is the empty text.
    if (text.empty()) return 0;
    const auto place = static_cast<TextPlace>(texts.size());
    texts.append(text) += '\0';
    return place;
}

}  // namespace wnplatform::typelib
