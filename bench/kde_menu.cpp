// KDE's own menu of folders, as its file managers show it under "Copy To": kde_menu FILE
// Built by script/bench --peers alone, with KDE's libraries.
#include <KFileCopyToMenu>
#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QUrl>

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    if (count != 2) return 2;
    QIcon::setThemeName(QStringLiteral("breeze"));
    QMenu menu;
    KFileCopyToMenu folders(&menu);
    folders.setUrls({QUrl::fromLocalFile(QString::fromLocal8Bit(arguments[1]))});
    folders.addActionsTo(&menu);
    menu.popup(QPoint(100, 100));
    return QApplication::exec();
}
