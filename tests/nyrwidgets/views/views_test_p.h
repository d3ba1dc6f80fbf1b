#pragma once

// Items, subscribers and helpers shared by the view tests.

#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QItemSelectionModel>
#include <QObject>
#include <QPainter>
#include <QStyleOptionViewItem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "nyr/frame/notifications.h"
#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"
#include "nyrwidgets/views/report_view_menu.h"
#include "tests/support/dialog_answer.h"

namespace nyr::test {

// An item with one text per column; column 1 compares as a number when it
// holds one, the others as texts ignoring case. Column 1 offers its number as
// a sort key too, so that sorts by it take the keys' way.
class TextItem : public CNyrReportViewItem
{
public:
    explicit TextItem(std::vector<std::string> cells, std::vector<std::string>* log = nullptr)
        : m_cells(std::move(cells)), m_log(log)
    {
    }

    void SetCell(unsigned int col, std::string text) { m_cells.at(col) = std::move(text); }

    using CNyrReportViewItem::OnGetItemText;
    int OnGetItemText(unsigned int realCol, unsigned int, std::string& text) override
    {
        text = realCol < m_cells.size() ? m_cells[realCol] : std::string();
        return 1;
    }
    int OnCompareItem(const CNyrReportViewItem* other, unsigned int realCol) override
    {
        const auto* o = static_cast<const TextItem*>(other);
        const std::string a = realCol < m_cells.size() ? m_cells[realCol] : std::string();
        const std::string b = realCol < o->m_cells.size() ? o->m_cells[realCol] : std::string();
        if (realCol == 1)
            return Compare(std::atof(a.c_str()), std::atof(b.c_str()));
        return CompareIS(a, b);
    }
    int OnGetItemSortKey(unsigned int realCol, SORT_KEY& key) const override
    {
        if (realCol != 1)
            return 0;
        key.SetNumber(std::atof(m_cells.size() > 1 ? m_cells[1].c_str() : ""));
        return 1;
    }
    int OnHideItem(int hide) override { return Log("hide", hide) && !vetoHide; }
    int OnDeleteItem() override { return Log("delete", 1) && !vetoDelete; }
    void OnCheckItem(int check) override { Log("check", check); }
    void OnSelectItem(int select) override { Log("select", select); }
    void OnDisableItem(int disable) override { Log("disable", disable); }
    void OnGetItemColor(unsigned int, unsigned int, unsigned int realCol, unsigned int, unsigned int& text,
                        unsigned int& back) override
    {
        if (realCol == colorCol) {
            text = textColor;
            back = backColor;
        }
    }

    int OnGetItemOwnerDraw(unsigned int, unsigned int, unsigned int realCol, unsigned int, QPainter* painter,
                           const QStyleOptionViewItem& option) override
    {
        if (realCol != ownerDrawCol)
            return 0;
        painter->fillRect(option.rect, QColor(0, 0, 255));
        return 1;
    }

    bool vetoHide = false;
    unsigned int ownerDrawCol = 0xFFFFFFFFu;
    bool vetoDelete = false;
    unsigned int colorCol = 0xFFFFFFFFu;
    unsigned int textColor = NYR_CLR_DEFAULT;
    unsigned int backColor = NYR_CLR_DEFAULT;

private:
    int Log(const char* what, int value)
    {
        if (m_log)
            m_log->push_back(std::string(what) + (value ? "+" : "-"));
        return 1;
    }
    std::vector<std::string> m_cells;
    std::vector<std::string>* m_log;
};

// An item whose comparison is the default one: all items equal.
class PlainItem : public CNyrReportViewItem
{
};

// A window that records the library messages it receives.
class Subscriber : public QObject
{
public:
    struct Message
    {
        unsigned int message;
        quintptr wParam;
        qintptr lParam;
        bool operator==(const Message&) const = default;
        friend std::ostream& operator<<(std::ostream& out, const Message& m)
        {
            return out << "{message 0x" << std::hex << m.message << std::dec << ", item " << m.lParam << "}";
        }
    };
    std::vector<Message> received;
    std::function<void(const Message&)> onMessage;

protected:
    bool event(QEvent* e) override
    {
        if (CNyrMessageEvent* m = CNyrMessageEvent::From(e)) {
            received.push_back({m->Message(), m->WParam(), m->LParam()});
            if (onMessage)
                onMessage(received.back());
            m->SetResult(1);
            return true;
        }
        return QObject::event(e);
    }
};

// A subscriber that keeps its own copy of every item's state bits (selected,
// disabled, hidden, checked) from the messages it receives. A message that
// repeats what the copy holds, or a copy that differs from the view after an
// operation, shows a change told twice, out of order or not at all. Items it
// has not heard of count as new items: every bit clear.
class StateLedger : public Subscriber
{
public:
    StateLedger()
    {
        onMessage = [this](const Message& m) { Take(m); };
    }

    // Subscribes with `mask` (and to the removal of all items, which starts
    // the copy afresh); the view's items must all be in their first state
    // (every bit clear) or the copy starts wrong.
    void Attach(CNyrReportView& view, long mask = CNyrReportView::NotifyItemAll)
    {
        m_mask = mask;
        view.AddItemNotification(this, mask | CNyrReportView::NotifyItemCleanup);
    }

    // The faults seen so far and those the view shows now; empty when all is
    // well. Forgets the faults seen so far.
    std::vector<std::string> Faults(const CNyrReportView& view)
    {
        std::vector<std::string> faults;
        faults.swap(m_faults);
        for (unsigned int r = 0; r < view.GetRealItemCount(); ++r) {
            const CNyrReportViewItem* item = view.GetRealItem(r);
            const Bits actual{(item->GetItemState() & CNyrReportViewItem::StateSelected) != 0,
                              (item->GetItemState() & CNyrReportViewItem::StateDisabled) != 0,
                              item->IsHidden(),
                              (item->GetModelFlags() & CNyrReportViewItem::FlagChecked) != 0};
            const Bits told = r < m_bits.size() ? m_bits[r] : Bits{};
            for (int f = 0; f < 4; ++f) {
                if ((m_mask & kFieldBits[f]) && actual.*kFields[f] != told.*kFields[f])
                    faults.push_back("item " + std::to_string(r) + ": " + kNames[f] + " is " +
                                     std::to_string(actual.*kFields[f]) + ", told " +
                                     std::to_string(told.*kFields[f]));
            }
        }
        return faults;
    }

private:
    struct Bits
    {
        bool selected = false, disabled = false, hidden = false, checked = false;
    };
    static constexpr bool Bits::*kFields[4] = {&Bits::selected, &Bits::disabled, &Bits::hidden, &Bits::checked};
    static constexpr long kFieldBits[4] = {CNyrReportView::NotifyItemSelect, CNyrReportView::NotifyItemDisable,
                                           CNyrReportView::NotifyItemHide, CNyrReportView::NotifyItemCheck};
    static constexpr const char* kNames[4] = {"selected", "disabled", "hidden", "checked"};

    void Take(const Message& m)
    {
        if (m.message == WM_NYR_REPORTVIEW_ITEM_CLEANUP) {
            m_bits.clear();
            return;
        }
        const struct
        {
            unsigned int message;
            int field;
            bool value;
        } kinds[] = {
            {WM_NYR_REPORTVIEW_ITEM_SELECT, 0, true},  {WM_NYR_REPORTVIEW_ITEM_DESELECT, 0, false},
            {WM_NYR_REPORTVIEW_ITEM_DISABLE, 1, true}, {WM_NYR_REPORTVIEW_ITEM_ENABLE, 1, false},
            {WM_NYR_REPORTVIEW_ITEM_HIDE, 2, true},    {WM_NYR_REPORTVIEW_ITEM_VIEW, 2, false},
            {WM_NYR_REPORTVIEW_ITEM_CHECK, 3, true},   {WM_NYR_REPORTVIEW_ITEM_UNCHECK, 3, false},
        };
        for (const auto& k : kinds) {
            if (k.message != m.message)
                continue;
            const auto r = static_cast<std::size_t>(m.lParam);
            if (m_bits.size() <= r)
                m_bits.resize(r + 1);
            bool& bit = m_bits[r].*kFields[k.field];
            if (bit == k.value)
                m_faults.push_back("item " + std::to_string(r) + ": told " + kNames[k.field] + " " +
                                   std::to_string(k.value) + " twice");
            bit = k.value;
        }
    }

    long m_mask = 0;
    std::vector<Bits> m_bits;
    std::vector<std::string> m_faults;
};

// The real items whose rows Qt shows selected, in screen order.
inline std::vector<int> Highlighted(const CNyrReportView& view)
{
    std::vector<int> rows;
    for (int s = 0; s < view.GetItemCount(); ++s) {
        if (view.selectionModel()->isSelected(view.model()->index(s, 0)))
            rows.push_back(view.RealItemFromScreen(s));
    }
    return rows;
}

// The real items on screen that the model holds selected, in screen order.
inline std::vector<int> SelectedOnScreen(const CNyrReportView& view)
{
    std::vector<int> rows;
    for (int s = 0; s < view.GetItemCount(); ++s) {
        if (view.GetItem(s)->IsSelected())
            rows.push_back(view.RealItemFromScreen(s));
    }
    return rows;
}

// A report view of `rows` items with three columns "Name", "Value", "Note";
// item i holds "name<i>", the number (i * 7) % rows and "note".
inline void Fill(CNyrReportView& view, int rows, std::vector<std::string>* log = nullptr)
{
    view.AddRealCols(std::vector<std::string>{"Name", "Value", "Note"}, {100, 80, 60});
    for (int i = 0; i < rows; ++i) {
        view.AddRealItem(new TextItem({"name" + std::to_string(i), std::to_string((i * 7) % rows), "note"}, log));
    }
    view.DisplayRealItems(1);
}

// The real items in screen order.
inline std::vector<int> ScreenOrder(const CNyrReportView& view)
{
    std::vector<int> order;
    for (int s = 0; s < view.GetItemCount(); ++s)
        order.push_back(view.RealItemFromScreen(s));
    return order;
}

// Answers every message box with `answer` and keeps its text and style
// while it lives.
struct MessageLog
{
    explicit MessageLog(int reply = 1) : answer(reply)
    {
        Instance() = this;
        saved = NyrGetUiHooks();
        CNyrUiHooks hooks = saved;
        hooks.messageBox = [](const std::string& text, const std::string&, unsigned style) {
            Instance()->texts.push_back(text);
            Instance()->styles.push_back(style);
            return Instance()->answer;
        };
        NyrSetUiHooks(hooks);
    }
    ~MessageLog() { NyrSetUiHooks(saved); }
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;
    static MessageLog*& Instance()
    {
        static MessageLog* log = nullptr;
        return log;
    }
    CNyrUiHooks saved;
    int answer;
    std::vector<std::string> texts;
    std::vector<unsigned> styles;
};

// Right-clicks `viewport` (a view's or its header's) at `pos` as the user
// does, with Shift when asked; `choose` picks the entry of the menu that
// shows. Returns how many menus showed.
inline int RightClick(QWidget* viewport, const QPoint& pos, bool shift,
                      const std::function<QAction*(CNyrReportViewMenuPopUp&)>& choose)
{
    int shown = 0;
    const auto saved = CNyrReportViewMenuPopUp::SetChoiceHook([&](CNyrReportViewMenuPopUp& menu) {
        ++shown;
        return choose(menu);
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, pos, viewport->mapToGlobal(pos),
                            shift ? Qt::ShiftModifier : Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
    CNyrReportViewMenuPopUp::SetChoiceHook(saved);
    return shown;
}

inline quintptr W(const CNyrReportView& view)
{
    return reinterpret_cast<quintptr>(&view);
}

}  // namespace nyr::test
