"""Prints the results of corvantis-benchmarks as a table: one job per line, medians and ratios."""
import json
import statistics
import sys


def medians(results):
    """The median thread CPU time [ns] of each form of each job, in the jobs' order."""
    unit = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    times = {}
    runs = results["benchmarks"]
    for run in sorted(runs, key=lambda run: run["family_index"]):
        if run.get("run_type") == "aggregate":
            continue
        job, size, form = run["run_name"].rsplit("/", 2)
        forms = times.setdefault((job, int(size)), {})
        forms.setdefault(form, []).append(run["cpu_time"] * unit[run["time_unit"]])
    return {
        job: {form: statistics.median(values) for form, values in forms.items()}
        for job, forms in times.items()
    }


def spelled(time):
    for limit, unit in ((1e3, "ns"), (1e6, "us"), (1e9, "ms")):
        if time < limit:
            return f"{time / limit * 1e3:.3g} {unit}"
    return f"{time / 1e9:.3g} s"


def ratio(over, under):
    return f"{over / under:.2f}" if over and under else "-"


def main(path):
    with open(path, encoding="utf-8") as file:
        rows = medians(json.load(file))
    layout = "{:<36} {:>9} {:>9} {:>9} {:>9} {:>14} {:>14}"
    print(layout.format("job", "size", "plain", "library", "limit", "plain/library",
                        "library/limit"))
    for (job, size), forms in rows.items():
        plain, library, limit = (forms.get(form) for form in ("plain", "library", "limit"))
        cells = [spelled(time) if time else "-" for time in (plain, library, limit)]
        print(layout.format(job, size, *cells, ratio(plain, library), ratio(library, limit)))


if __name__ == "__main__":
    main(sys.argv[1])
