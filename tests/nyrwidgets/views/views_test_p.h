#pragma once

// Items, subscribers and helpers shared by the view tests.

#include <QApplication>
#include <QObject>
#include <QPainter>
#include <QStyleOptionViewItem>
#include <functional>
#include <string>
#include <vector>

#include "nyr/frame/ui_hooks.h"
#include "nyrwidgets/frame/message_event.h"
#include "nyrwidgets/views/report_view.h"
#include "nyrwidgets/views/report_view_item.h"

namespace nyr::test {

// An item with one text per column; column 1 compares as a number when it
// holds one, the others as texts ignoring case.
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

inline quintptr W(const CNyrReportView& view)
{
    return reinterpret_cast<quintptr>(&view);
}

}  // namespace nyr::test
