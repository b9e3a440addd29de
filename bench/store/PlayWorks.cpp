#include "Items.h"
#include "ModuleTurns.h"
#include "OrvoPlayListCommands.h"
#include "OrvoPlayRecords.h"

namespace {

class Skip : public ModuleTurns {
public:
    Skip(const Setting& setting, OrvoPlayLogicRequestKind::Enum kind)
        : ModuleTurns(setting, {1, setting.size}), m_kind(kind) {
        // All of it once, a piece at a time, so that the page cache is as full as it gets.
        for (int from = 0; from < setting.size; from += 1000)
            list()->getItems(from, from + 999);
        m_failed = !play(true);
        for (int i = 0; i < WayIn; ++i)
            m_failed = m_failed || !skip(OrvoPlayLogicRequestKind::Next);
    }

    bool ours() override { return !m_failed && skip(m_kind); }

private:
    // Begins somewhere within the list: it leaves the turns room on both sides also in the
    // shortest.
    static constexpr int WayIn = 500;

    bool skip(OrvoPlayLogicRequestKind::Enum kind) {
        OrvoPlayLogicRequest args;
        args.setKind(kind);
        return send(OrvoPlayListsPlayLogicPath(), args.toVariant());
    }

    OrvoPlayLogicRequestKind::Enum m_kind;
    bool m_failed = false;
};

// The base is the same on a list that plays unshuffled.
class AddWhilePlaying : public ModuleTurns {
public:
    explicit AddWhilePlaying(const Setting& setting)
        : ModuleTurns(setting, {1, setting.size}), m_items(Items::of(setting.size)) {}

    bool base() override { return add(); }
    bool ours() override { return add(); }
    void prepareBase() override { start(false); }
    void prepareOurs() override { start(true); }

private:
    void start(bool shuffled) {
        startOver();
        m_playing = play(shuffled);
    }
    bool add() {
        return m_playing &&
               list()->addItems(OrvoPlayListAddPosition::Append, m_items.ours()) == size();
    }

    const Items& m_items;
    bool m_playing = false;
};

} // namespace

std::vector<Work> playWorks() {
    using Length = Work::Length;
    using Kind = OrvoPlayLogicRequestKind;
    const auto next = [](const Setting& s) { return std::make_unique<Skip>(s, Kind::Next); };
    const auto previous = [](const Setting& s) {
        return std::make_unique<Skip>(s, Kind::Previous);
    };
    const auto add = [](const Setting& s) { return std::make_unique<AddWhilePlaying>(s); };
    return {
        {"next with shuffle", "", {}, 0.05, Length::Short, {}, next},
        {"previous with shuffle", "", {}, 0.05, Length::Short, {}, previous},
        {"add n to a shuffled playing list", "not shuffled", 1.1, 1.2, Length::Long, {}, add},
    };
}
