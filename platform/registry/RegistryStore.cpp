#include "platform/registry/RegistryStore.h"

#include <string>
#include <string_view>
#include <utility>

#include "platform/core/HomeLock.h"
#include "platform/registry/RegistryFile.h"
#include "platform/registry/RegistryText.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

// What the file may hold beyond twice the registry before it is written anew, so that a small one is left alone.
constexpr std::size_t kSlack = 16384;

class Store {
public:
    RegistryView View() {
        RegistryView view{std::unique_lock(m_mutex), ERROR_SUCCESS, nullptr, 0};
        Look(view);
        return view;
    }

    std::unique_lock<std::mutex> Lock() { return std::unique_lock(m_mutex); }

    LSTATUS Change(const std::function<LSTATUS(const RegistryView&, std::string&)>& change) {
        RegistryView view{std::unique_lock(m_mutex), ERROR_SUCCESS, nullptr, 0};
        const HomeLock turn;
        if (!turn) return static_cast<LSTATUS>(turn.Error());
        Look(view);
        if (view.status != ERROR_SUCCESS) return view.status;
        if (m_tree->damaged) return ERROR_BADDB;
        std::string lines;
        const LSTATUS status = change(view, lines);
        return status != ERROR_SUCCESS || lines.empty() ? status : Commit(lines);
    }

private:
    void Look(RegistryView& view) {
        if (!m_tree || !m_file.IsCurrent()) view.status = Refresh();
        view.tree = m_tree;
        view.version = m_version;
    }

    // What another process has appended is carried out on the tree; anything else is read from the start.
    LSTATUS Refresh() {
        const std::string known = m_file.Text();
        const std::shared_ptr<RegistryTree> tree = std::exchange(m_tree, nullptr);
        if (const LSTATUS status = m_file.Read(); status != ERROR_SUCCESS) return status;
        ++m_version;
        const std::string& text = m_file.Text();
        const bool continues = tree && !tree->damaged && !known.empty() && text.starts_with(known);
        const std::string_view added = continues ? std::string_view(text).substr(known.size()) : std::string_view();
        if (continues && (added.empty() || added.starts_with("\n["))) {
            ReadRegistryChanges(*tree, added);
            m_tree = tree;
        } else {
            auto fresh = std::make_shared<RegistryTree>();
            if (!text.empty()) ReadRegistry(*fresh, text);
            m_tree = std::move(fresh);
        }
        return ERROR_SUCCESS;
    }

    // The lines are read back into the tree, so that it holds what another process will read.
    LSTATUS Commit(const std::string& lines) {
        const bool appends = m_file.MayAppend();
        LSTATUS status = appends ? m_file.Append(lines) : ERROR_SUCCESS;
        const std::shared_ptr<RegistryTree> tree = std::exchange(m_tree, nullptr);
        if (status == ERROR_SUCCESS) ReadRegistryChanges(*tree, lines);
        if (status == ERROR_SUCCESS && !appends) status = m_file.Replace(FormatRegistry(*tree));
        ++m_version;
        if (status != ERROR_SUCCESS) return status;
        m_tree = tree;
        if (appends) Shorten();
        return ERROR_SUCCESS;
    }

    // Writes the file anew when what no longer counts has outgrown the rest. The change itself is there already, so a
    // failure only puts this off.
    void Shorten() {
        const std::size_t size = m_file.Text().size();
        if (size < m_shortenAt) return;
        std::string text = FormatRegistry(*m_tree);
        m_shortenAt = 2 * text.size() + kSlack;
        if (size >= m_shortenAt && m_file.Replace(std::move(text)) != ERROR_SUCCESS) m_shortenAt = 2 * size;
    }

    std::mutex m_mutex;
    RegistryFile m_file{Home() + "/registry.reg"};
    std::shared_ptr<RegistryTree> m_tree;  // null when the file must be read again
    std::uint64_t m_version = 0;
    std::size_t m_shortenAt = kSlack;
};

// Never destroyed: objects that end with the process may still ask.
Store& TheStore() {
    static Store* const store = new Store;
    return *store;
}

}  // namespace

RegistryView ViewRegistry() { return TheStore().View(); }

std::unique_lock<std::mutex> LockRegistry() { return TheStore().Lock(); }

LSTATUS ChangeRegistry(const std::function<LSTATUS(const RegistryView&, std::string&)>& change) {
    return TheStore().Change(change);
}

}  // namespace wnplatform
