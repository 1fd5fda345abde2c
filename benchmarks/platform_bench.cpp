// Modules beside the bare loader, and the lock pool beside the file operations it cannot do without.

#include <zavbase/platform/shared_lib.h>
#include <zavbase/threads/lock_pool.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

const std::string modulePath = BENCH_MODULE;

void LoadWithLibrary(benchmark::State& state) {
    const std::filesystem::path path(modulePath);
    ZAV_SharedLib lib(path.stem().c_str(), path.parent_path().c_str());
    for (auto _ : state) {
        lib.Load();
        lib.Release();
    }
}
BENCHMARK(LoadWithLibrary)->Name("Module/zav/load_release");

void LoadStrictWithLibrary(benchmark::State& state) {
    const std::filesystem::path path(modulePath);
    ZAV_SharedLib lib(path.stem().c_str(), path.parent_path().c_str());
    for (auto _ : state) {
        lib.LoadStrict();
        lib.Release();
    }
}
BENCHMARK(LoadStrictWithLibrary)->Name("Module/zav/load_release_strict");

void LoadBare(benchmark::State& state) {
    for (auto _ : state) {
        void* module = dlopen(modulePath.c_str(), RTLD_NOW | RTLD_LOCAL);
        for (const char* name : {"CreateObjectInstance", "FreeObjectInstance", "GetI18nDefs"})
            benchmark::DoNotOptimize(dlsym(module, name));
        dlclose(module);
    }
}
BENCHMARK(LoadBare)->Name("Module/dlopen/load_release");
BENCHMARK(LoadBare)->Name("Module/dlopen/load_release_strict");

struct PoolFile {
    PoolFile() : mPath((std::filesystem::temp_directory_path() / "platform_bench.pool").string()) {
        std::filesystem::remove(mPath);
        ZAV_ResourceLockPool pool(mPath.c_str());
        for (int i = 0; i < 100; ++i) pool.Lock(("lock" + std::to_string(i)).c_str());
    }
    ~PoolFile() { std::filesystem::remove(mPath); }
    std::string mPath;
};

void LockAndUnlock(benchmark::State& state) {
    PoolFile file;
    ZAV_ResourceLockPool pool(file.mPath.c_str());
    for (auto _ : state) {
        pool.Lock("one more");
        pool.UnLock("one more");
    }
}
BENCHMARK(LockAndUnlock)->Name("LockPool/zav/lock_unlock_100")->UseRealTime();

void LookAtState(benchmark::State& state) {
    PoolFile file;
    ZAV_ResourceLockPool pool(file.mPath.c_str());
    for (auto _ : state) pool.GetLockState("lock99");
}
BENCHMARK(LookAtState)->Name("LockPool/zav/state_100")->UseRealTime();

std::string ReadBare(const std::string& path) {
    std::string bytes(std::filesystem::file_size(path), '\0');
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (read(file, bytes.data(), bytes.size()) < 0) bytes.clear();
    close(file);
    return bytes;
}

void ReplaceBare(const std::string& path, const std::string& bytes) {
    const std::string beside = path + ".new";
    const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (write(file, bytes.data(), bytes.size()) < 0) std::abort();
    fsync(file);
    close(file);
    std::rename(beside.c_str(), path.c_str());
}

/// Twice the whole file read and replaced, and nothing decided.
void FileOperationsOnly(benchmark::State& state) {
    PoolFile file;
    for (auto _ : state)
        for (int i = 0; i < 2; ++i) ReplaceBare(file.mPath, ReadBare(file.mPath));
}
BENCHMARK(FileOperationsOnly)->Name("LockPool/files/lock_unlock_100")->UseRealTime();

} // namespace
