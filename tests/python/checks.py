"""Tells pytest's results as the list of tests counts them: a line "ok - what" for each."""

from __future__ import annotations

import pytest


def pytest_report_teststatus(report: pytest.TestReport) -> tuple[str, str, str]:
    return report.outcome, "", ""


def pytest_runtest_logreport(report: pytest.TestReport) -> None:
    if report.when == "call" or report.failed:
        print(f"{'not ok' if report.failed else 'ok'} - {report.nodeid}", flush=True)
        if report.failed:
            print(report.longreprtext, flush=True)


def pytest_collectreport(report: pytest.CollectReport) -> None:
    if report.failed:
        print(f"not ok - {report.nodeid}\n{report.longreprtext}", flush=True)
