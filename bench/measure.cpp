// What can only be measured from outside: memory of a fresh process, and the time until a window shows its first frame.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>

#include <QApplication>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QProcess>

#include "app/modMvmDef.h"
#include "bench.h"
#include "generate.h"
#include "main/frmMain.h"
#include "main/frmView.h"
#include "model/modMvmRead.h"
#include "model/modMvmWrite.h"
#include "modSession.h"
#include "modSetup.h"
#include "support/model_text.h"

namespace {

constexpr int patience = 120000; ///< milliseconds that a child may take

/// A line of /proc/self/status, in bytes.
double StatusBytes(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == key + ":") {
            double kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    }
    return 0;
}

template <typename T>
double BytesOf(const Array1<T>& array)
{
    return static_cast<double>(array.Items.size() * sizeof(T));
}

double BytesOfScene()
{
    double bytes = BytesOf(Bones) + BytesOf(Materials) + BytesOf(Meshes) + BytesOf(Instances);
    for (const MvmMesh& mesh : Meshes) {
        bytes += BytesOf(mesh.MeshMaterials) + BytesOf(mesh.Vertices) + BytesOf(mesh.Normals) +
                 BytesOf(mesh.TexCoords) + BytesOf(mesh.Faces) + BytesOf(mesh.VertexBones) + BytesOf(mesh.VertexJoints);
    }
    return bytes;
}

std::string Megabytes(double bytes)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", bytes / 1e6);
    return text;
}

std::string Milliseconds(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.0f ms", value);
    return text;
}

/// Milliseconds from the start of the child until it says that its first frame stands.
double TimeOfStart(const std::string& self, const char* mode, const std::string& argument)
{
    QElapsedTimer time;
    time.start();
    QProcess child;
    child.start(QString::fromStdString(self), {QString::fromUtf8(mode), QString::fromStdString(argument)});
    child.waitForReadyRead(patience);
    const auto spent = static_cast<double>(time.nsecsElapsed()) / 1e6;
    child.waitForFinished(patience);
    return child.exitCode() == 0 ? spent : patience;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Serves events until the view has shown a frame that was asked for from now on.
void WaitForFrame(QOpenGLWidget* view)
{
    bool shown = false;
    QObject::connect(view, &QOpenGLWidget::frameSwapped, view, [&shown] { shown = true; });
    view->update();
    while (!shown) {
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
}

QOpenGLWidget* ViewOf(const frmMain& window)
{
    return qobject_cast<QOpenGLWidget*>(window.picMain);
}

class EmptyView : public QOpenGLWidget {
protected:
    void paintGL() override { context()->functions()->glClear(GL_COLOR_BUFFER_BIT); }
};

} // namespace

int MemoryChild(const std::string& argument)
{
    int count = 1;
    char name[] = "beastwright_bench";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    PrepareApplication();
    frmMain window;
    window.Start("");
    WaitForFrame(ViewOf(window)); // what the driver takes for the first frame is not the model's
    const double before = StatusBytes("VmRSS");
    if (!LoadMVM(argument)) {
        return 1;
    }
    std::cout << StatusBytes("VmRSS") - before << ' ' << StatusBytes("VmHWM") - before << ' ' << BytesOfScene()
              << std::endl;
    return 0;
}

void MeasureMemory(const std::string& self)
{
    FillScene(20, 300, 8, true);
    const std::string text = ModelText();
    const auto fileBytes = static_cast<double>(text.size());
    const std::string path = TemporaryFile("memory.mvm", text);
    ResetSession();

    QProcess child;
    child.start(QString::fromStdString(self), {QString::fromUtf8(memoryMode), QString::fromStdString(path)});
    child.waitForFinished(patience);
    double after = 0;
    double peak = 0;
    double arrays = 0;
    const std::string output = child.readAllStandardOutput().toStdString();
    if (std::sscanf(output.c_str(), "%lf %lf %lf", &after, &peak, &arrays) != 3) {
        std::fprintf(stderr, "the child for the memory failed: %s\n", output.c_str());
        std::exit(1);
    }
    MeasuredRows.push_back(
        {"memory after the load, against its arrays", Megabytes(after), Megabytes(arrays), after / arrays, 1.3, true});
    const double most = after + 2 * fileBytes;
    MeasuredRows.push_back({"peak during the load, against that and twice the file", Megabytes(peak), Megabytes(most),
                            peak / most, 1, true});
}

int StartChild(bool withProgram, const std::string& argument)
{
    int count = 1;
    char name[] = "beastwright_bench";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    if (withProgram) {
        PrepareApplication();
        frmMain window;
        window.Start(argument);
        QOpenGLWidget* view = ViewOf(window);
        if (view == nullptr || !ModelOpen) {
            return 1;
        }
        WaitForFrame(view);
        std::cout << "shown" << std::endl;
        return 0;
    }
    QMainWindow window;
    window.resize(660, 508);
    auto* view = new EmptyView;
    view->setFormat(ViewFormat());
    window.setCentralWidget(view);
    window.show();
    WaitForFrame(view);
    std::cout << "shown" << std::endl;
    return 0;
}

void MeasureStart(const std::string& self)
{
    const std::string sample = SOURCE_FOLDER "/samples/vorrel/vorrel.mvm";
    constexpr int rounds = 31; // a start takes a tenth of a second, of which a busy moment changes much
    std::vector<double> ours;
    std::vector<double> empty;
    for (int i = 0; i < rounds; ++i) {
        ours.push_back(TimeOfStart(self, startMode, sample));
        empty.push_back(TimeOfStart(self, emptyMode, sample));
    }
    const double a = Median(ours);
    const double b = Median(empty);
    MeasuredRows.push_back(
        {"start to first frame, against an empty window", Milliseconds(a), Milliseconds(b), a / b, 1.5, true});
}
