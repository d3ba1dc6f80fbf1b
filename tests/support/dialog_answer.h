#pragma once

// Answering the dialogs that run through NyrExecDialog, for widget tests.
// qt_main.cpp installs a last answer that fails the test naming the dialog
// nobody answered; as the seam rejects a dialog left open, such a test goes
// on instead of waiting.

#include <gtest/gtest.h>

#include <QDialog>
#include <functional>

#include "nyrwidgets/frame/dialog_hook.h"

namespace nyr::test {

// While it lives, each dialog that opens is handed to `answer` (which closes
// it as the user would) and counted; the answer before it comes back after.
struct DialogAnswer
{
    explicit DialogAnswer(std::function<void(QDialog&)> answer)
    {
        saved = NyrSetDialogHook([this, answer = std::move(answer)](QDialog& dialog) {
            ++opened;
            answer(dialog);
        });
    }
    ~DialogAnswer() { NyrSetDialogHook(saved); }
    DialogAnswer(const DialogAnswer&) = delete;
    DialogAnswer& operator=(const DialogAnswer&) = delete;
    int opened = 0;
    NyrDialogHook saved;
};

// Answers the next dialog only, which must be a T; the answer before comes
// back as it opens, so `answer` may arm the one for the dialog after it.
template <class T>
void AnswerNext(std::function<void(T&)> answer)
{
    auto previous = std::make_shared<NyrDialogHook>();
    *previous = NyrSetDialogHook([previous, answer = std::move(answer)](QDialog& dialog) {
        NyrSetDialogHook(*previous);
        if (auto* expected = qobject_cast<T*>(&dialog))
            answer(*expected);
        else
            ADD_FAILURE() << "expected a " << T::staticMetaObject.className() << ", not a "
                          << dialog.metaObject()->className() << " \"" << dialog.windowTitle().toStdString() << '"';
    });
}

// The last answer (qt_main.cpp): a failure that names the dialog.
inline void FailOnUnansweredDialogs()
{
    NyrSetDialogHook([](QDialog& dialog) {
        ADD_FAILURE() << "a dialog nobody answered: " << dialog.metaObject()->className() << " \""
                      << dialog.windowTitle().toStdString() << '"';
    });
}

}  // namespace nyr::test
