// Tells the leak sanitizer what isn't ours to free. Only built into programs of the preset "asan".

// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer's names
extern "C" {
const char* __lsan_default_options();
const char* __lsan_default_suppressions();
}

const char* __lsan_default_options()
{
    return "print_suppressions=0";
}

// - The offscreen platform plugin of Qt never frees its screen.
// - Pieces of the system's font configuration that its library keeps behind marked pointers.
// - What a QThread shares with the system's thread, which frees it at its very end, after
//   QThread::wait(): the process may end before. A QThread that is lost is still reported.
// - "Help" starts its viewer with a process object that is never freed, so that the viewer outlives
//   the window.
const char* __lsan_default_suppressions()
{
    return "leak:libqoffscreen.so\n"
           "leak:libfontconfig.so\n"
           "leak:QThread::QThread\n"
           "leak:MainWindow::on_actionHelp_triggered\n";
}
// NOLINTEND(bugprone-reserved-identifier)
