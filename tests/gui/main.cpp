#include <QApplication>
#include <QWidget>
#include <gtest/gtest.h>

#include <cstdio>

namespace {

// Which widget had the focus tells most about a gui test that failed.
class FocusReporter : public testing::EmptyTestEventListener {
    void OnTestPartResult(const testing::TestPartResult& result) override {
        if (!result.failed()) return;
        std::string path;
        for (const QObject* object = QApplication::focusWidget(); object != nullptr;
             object = object->parent()) {
            path = "/" + object->objectName().toStdString() + path;
        }
        std::printf("focus: %s\n", path.empty() ? "none" : path.c_str());
    }
};

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("fusion"));
    QApplication::setQuitOnLastWindowClosed(false);
    testing::UnitTest::GetInstance()->listeners().Append(new FocusReporter);
    return RUN_ALL_TESTS();
}
