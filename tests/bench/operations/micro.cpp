// Times every operation in the manner of Google Benchmark, whose arguments it takes.

#include "Operation.h"

#include <QGuiApplication>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>

using namespace Tolvar::Varundo;

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("varundo.*=false"));
    for (const Bench::OperationMaker& maker : Bench::allOperations()) {
        benchmark::RegisterBenchmark(maker.name.c_str(), [maker](benchmark::State& state) {
            const Bench::Operation operation = maker.make();
            for ([[maybe_unused]] auto turn : state) {
                operation.run();
            }
            state.SetItemsProcessed(state.iterations() * operation.times);
            if (operation.bytes > 0) {
                state.SetBytesProcessed(state.iterations() * operation.bytes);
            }
        });
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
