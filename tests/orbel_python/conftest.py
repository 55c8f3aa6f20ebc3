from typing import Any

import orbel
import pytest


@pytest.fixture(scope="session")
def varn() -> Any:
    return orbel.load("varn_filepackaging")


@pytest.fixture(scope="session")
def sample() -> Any:
    return orbel.load("orbel_sample")
