// Runs a fuzzer's target over files, one by one, without the fuzzer: what was found once stays found.
//
//   replay_NAME DIRECTORY...

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir directory(QString::fromLocal8Bit(argv[i]));
        for (const QFileInfo& entry : directory.entryInfoList(QDir::Files, QDir::Name)) {
            QFile file(entry.filePath());
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(entry.filePath()));
                return 1;
            }
            const QByteArray content = file.readAll();
            std::fprintf(stderr, "%s\n", qPrintable(entry.fileName())); // the last one is the one that fails
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.constData()),
                                   static_cast<std::size_t>(content.size()));
            ++count;
        }
    }
    std::printf("%d inputs replayed\n", count);
    return count > 0 ? 0 : 1; // a corpus that is not there proves nothing
}
