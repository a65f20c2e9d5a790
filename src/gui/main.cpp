// zolt: the desktop program.
#include <QApplication>

#include "base/memory_reuse.h"
#include "gui/main_window.h"
#include "gui/single_instance.h"

int main(int argc, char** argv) {
    zolt::keepFreedMemoryForReuse();
    QApplication qapp(argc, argv);
    // A second start hands its files to the first and shows nothing.
    std::unique_ptr<zolt::SingleInstance> instance =
        zolt::SingleInstance::claim(qapp.arguments().mid(1));
    if (!instance) return 0;
    return zolt::runDesktop(qapp, std::move(instance));
}
