// nyr_msgbox_answer_helper SETTINGS_FILE KEY
// Asks the Yes/No/Cancel question of KEY as a host would, in a process of its
// own, and prints "<result> remembered" when the settings file answered it,
// or "asked <default button>" when a dialog would have been shown. It is not:
// the answer seam closes it with Cancel, which is never stored.
#include <QApplication>
#include <cstdio>
#include <cstdlib>

#include "nyr/util/profile_entries.h"
#include "nyrwidgets/msgbox/message_box.h"

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s SETTINGS_FILE KEY\n", argv[0]);
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    NyrSetProfilePath(argv[1]);
    int defaultButton = 0;
    CNyrMessageBoxDialog::SetAnswerHook([&defaultButton](CNyrMessageBoxDialog& dialog) {
        defaultButton = dialog.DefaultResult();
        return dialog.CancelValue();
    });
    const unsigned style = NYR_MB_YESNOCANCEL | NYR_MB_YESTOALL;
    const int result = CNyrMessageBox::ShowMessageDialog(argv[2], nullptr, "Overwrite?", "Import", style);
    if (defaultButton)
        std::printf("asked %d\n", defaultButton);
    else
        std::printf("%d remembered\n", result);
    return 0;
}
