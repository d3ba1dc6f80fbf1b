#pragma once

#include <string>
#include <utility>
#include <vector>

#include "nyr/platform/export.h"

// The library's registered notifications. Each is registered under its own
// name ("WM_NYR_PROPERTIES" and so on) once per process, while the library is
// being loaded, before any of its windows exist; the number is kept in the
// exported variable of the same name. The same name always gives the same
// number, so host code registering a name itself agrees with the library.
#define NYR_NOTIFICATIONS(X) \
    /* General window plumbing */ \
    X(WM_NYR_PROPERTIES) \
    X(WM_NYR_DBLCLK_SLOW) \
    X(WM_NYR_KEYDOWN_EE) \
    X(WM_NYR_EDIT_DELETE) \
    X(WM_NYR_EDIT_SELECT_ALL) \
    X(WM_NYR_POST_ACTIVATECHILDVIEW) \
    X(WM_NYR_POST_ACTIVATEVIEW) \
    X(WM_NYR_POST_INITDIALOG) \
    X(WM_NYR_POST_INITIALUPDATE) \
    X(WM_NYR_POST_SETFOCUS) \
    X(WM_NYR_DOCUMENT_CLOSE) \
    X(WM_NYR_EVENTCHANNELS_ENABLE) \
    X(WM_NYR_VIEW_DLGITEM_EXCHANGED) \
    /* Units and formats */ \
    X(WM_NYR_UNIT_CHANGED_ANGLE) \
    X(WM_NYR_UNIT_CHANGED_DISTANCE) \
    X(WM_NYR_FORMAT_CHANGED_TIME) \
    /* Buttons and combo boxes */ \
    X(WM_NYR_BTNEVENT_CREATEIMAGE) \
    X(WM_NYR_BUTTON_OWNER_DRAW_DRAWBUTTON) \
    X(WM_NYR_COMBO_BOX_MULTI_LISTHSCROLL) \
    /* Header list box */ \
    X(WM_NYR_HDR_LISTBOX_CANCELED) \
    X(WM_NYR_HDR_LISTBOX_DRAW) \
    X(WM_NYR_HDR_LISTBOX_INITIALIZE) \
    X(WM_NYR_HDR_LISTBOX_ITEM_SELECTED) \
    /* Input controls */ \
    X(WM_NYR_INPUT_CONTROL_CANCEL_INLINE) \
    X(WM_NYR_INPUT_CONTROL_CHILD_ADDED) \
    X(WM_NYR_INPUT_CONTROL_EMPTY_CHANGED) \
    X(WM_NYR_INPUT_CONTROL_HOOK_DLG_CTRL) \
    X(WM_NYR_INPUT_CONTROL_SAVE_VALUE_INLINE) \
    X(WM_NYR_INPUT_CONTROL_UNHOOK_DLG_CTRL) \
    X(WM_NYR_INPUT_CONTROL_VALIDATE) \
    X(WM_NYR_INPUT_CONTROL_VALIDATE_EMPTY) \
    /* File search thread */ \
    X(WM_NYR_FILESEARCHTHREAD_BEGIN) \
    X(WM_NYR_FILESEARCHTHREAD_TERMINATE) \
    X(WM_NYR_FILESEARCHTHREAD_ABORT) \
    X(WM_NYR_FILESEARCHTHREAD_SEARCHDIRECTORY) \
    X(WM_NYR_FILESEARCHTHREAD_FILESEARCHINDIRECTORY) \
    /* Shell browsing */ \
    X(WM_NYR_DLGCUSTOMFILE_FILENAME_CHANGED) \
    X(WM_NYR_DRIVE_VIEW_CONTENT_CHANGED) \
    X(WM_NYR_FOLDER_CONTENT_CHANGED) \
    X(WM_NYR_FOLDER_CONTENT_ENTRY_SELECTED) \
    X(WM_NYR_FOLDER_CONTENT_REFRESH) \
    X(WM_NYR_FOLDER_CONTENT_SELECT) \
    X(WM_NYR_FOLDER_CONTENT_SELECTIONCHANGED) \
    X(WM_NYR_FOLDER_CONTENT_SHOWAS_DETAILS) \
    X(WM_NYR_FOLDER_CONTENT_SHOWAS_LARGEICONS) \
    X(WM_NYR_FOLDER_CONTENT_SHOWAS_LIST) \
    X(WM_NYR_FOLDER_CONTENT_SHOWAS_SMALLICONS) \
    X(WM_NYR_TREECTRL_FOLDER_DIRCHANGED) \
    X(WM_NYR_TREECTRL_FOLDER_SELECTIONCHANGED) \
    X(WM_NYR_TREECTRL_LCLICKED_ON_SELECTED) \
    /* List and report views */ \
    X(WM_NYR_LISTVIEW_NO_SUBITEM_IMAGES) \
    X(WM_NYR_REPORTVIEW_AUTO_ARRANGE) \
    X(WM_NYR_REPORTVIEW_CHECK_ALL) \
    X(WM_NYR_REPORTVIEW_COLUMNS_DLG) \
    X(WM_NYR_REPORTVIEW_DELETE_SELECTED) \
    X(WM_NYR_REPORTVIEW_FIND) \
    X(WM_NYR_REPORTVIEW_FIND_NEXT) \
    X(WM_NYR_REPORTVIEW_FIND_PREV) \
    X(WM_NYR_REPORTVIEW_HIDE_ALL_COLS) \
    X(WM_NYR_REPORTVIEW_INVERT_CHECKED) \
    X(WM_NYR_REPORTVIEW_INVERT_SELECTION) \
    X(WM_NYR_REPORTVIEW_ITEM_APPEND) \
    X(WM_NYR_REPORTVIEW_ITEM_CHECK) \
    X(WM_NYR_REPORTVIEW_ITEM_CLEANUP) \
    X(WM_NYR_REPORTVIEW_ITEM_DELETE) \
    X(WM_NYR_REPORTVIEW_ITEM_DESELECT) \
    X(WM_NYR_REPORTVIEW_ITEM_DISABLE) \
    X(WM_NYR_REPORTVIEW_ITEM_DISPLAY_BEGIN) \
    X(WM_NYR_REPORTVIEW_ITEM_DISPLAY_END) \
    X(WM_NYR_REPORTVIEW_ITEM_ENABLE) \
    X(WM_NYR_REPORTVIEW_ITEM_HIDE) \
    X(WM_NYR_REPORTVIEW_ITEM_REFRESH) \
    X(WM_NYR_REPORTVIEW_ITEM_SELECT) \
    X(WM_NYR_REPORTVIEW_ITEM_SORT_ORDER) \
    X(WM_NYR_REPORTVIEW_ITEM_UNCHECK) \
    X(WM_NYR_REPORTVIEW_ITEM_VIEW) \
    X(WM_NYR_REPORTVIEW_MODIFY) \
    X(WM_NYR_REPORTVIEW_POST_HDN_ENDDRAG) \
    X(WM_NYR_REPORTVIEW_SAVE_AS) \
    X(WM_NYR_REPORTVIEW_SELECT_ALL) \
    X(WM_NYR_REPORTVIEW_SELECT_CHECKED_ITEMS) \
    X(WM_NYR_REPORTVIEW_SORT_ASCENDING) \
    X(WM_NYR_REPORTVIEW_SORT_DESCENDING) \
    X(WM_NYR_REPORTVIEW_SORT_MULTIPLE) \
    X(WM_NYR_REPORTVIEW_SORT_UNSORTED) \
    X(WM_NYR_REPORTVIEW_VIEW_ALL_COLS) \
    /* Tree views */ \
    X(WM_NYR_TREEVIEW_ITEM_CHECK) \
    X(WM_NYR_TREEVIEW_ITEM_CHECK_BEGIN) \
    X(WM_NYR_TREEVIEW_ITEM_CHECK_END) \
    X(WM_NYR_TREEVIEW_ITEM_COLLAPSE) \
    X(WM_NYR_TREEVIEW_ITEM_DELETE) \
    X(WM_NYR_TREEVIEW_ITEM_EXPAND) \
    X(WM_NYR_TREEVIEW_ITEM_SELECT) \
    X(WM_NYR_TREEVIEW_ITEM_UNCHECK) \
    X(WM_NYR_TREEVIEW_POST_ITEM_CHECKED) \
    /* Frames, tabs, splitters, shortcut bar */ \
    X(WM_NYR_SHORTCUT_LCLICKED) \
    X(WM_NYR_SPLITTERVIEW_POST_SPLITTERLBUTTONUP) \
    X(WM_NYR_SWITCHEDVIEW_MEMBER_CREATED) \
    X(WM_NYR_TABCTRL_PRE_REMOVE) \
    X(WM_NYR_TABCTRL_PRE_SEL) \
    X(WM_NYR_TABCTRL_SEL)

#define NYR_DECLARE_NOTIFICATION(name) extern NYR_EXPORT const unsigned int name;
NYR_NOTIFICATIONS(NYR_DECLARE_NOTIFICATION)
#undef NYR_DECLARE_NOTIFICATION

// First number handed out by the registry, as on the platform that defined
// these notifications; numbers below are fixed window messages.
inline constexpr unsigned int kNyrFirstRegisteredMessage = 0xC000;

// Process-wide name registry (the counterpart of RegisterWindowMessage): the
// number registered for `name`, registering it on first use. Names compare
// case-insensitively (ASCII). Returns 0 for a null or empty name and when the
// number range 0xC000-0xFFFF is used up.
NYR_EXPORT unsigned int NyrRegisterWindowMessage(const char* name);

// The name registered for a number, empty when none.
NYR_EXPORT std::string NyrRegisteredMessageName(unsigned int message);

// The library's own notifications as (name, number), in declaration order.
NYR_EXPORT std::vector<std::pair<std::string, unsigned int>> NyrLibraryNotifications();
