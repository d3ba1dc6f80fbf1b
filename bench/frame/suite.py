from benchlib import Row


def run(ctx):
    t = ctx.gbench("bench/frame/bench_frame")
    return [Row("load 1,000 library texts through the resource switch",
                t["BM_LoadString_1000Texts"] / 1e3, t["BM_UnorderedMap_1000Texts"] / 1e3,
                other="std::unordered_map look-up + copy", unit="us")]
