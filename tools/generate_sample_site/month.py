"""What the indicator of the sample site recorded in a month, with what a manager looks for."""

import dataclasses
import datetime
import random

from site_tables import INGREDIENTS, RECIPES, pens, recipe_lines

SEED = 2260
FIRST_DAY = datetime.date(2026, 1, 1)
DAYS = 31
LIST_LENGTH = 34  # entries of a list in a batch record, padding included
LOAD_LIMIT = 12000  # pounds that go into the mixer at once

MORNING, AFTERNOON = range(2)
START = (5 * 60 + 40, 13 * 60 + 20)  # minutes of the day
MORNING_RECIPES = range(1, 10)
AFTERNOON_RECIPES = (1, 2, 4, 5, 8)

HOSPITAL = 8  # the recipe with the medicated premix
CARRIED_OVER_LIMIT = 0.012  # share of a batch that stays in the mixer at most

# From these days of the month on a pen is fed another recipe than its own.
MOVES = [("H01", 1, 7), ("H02", 1, 7), ("A06", 12, HOSPITAL), ("H01", 12, HOSPITAL),
         ("H02", 12, HOSPITAL), ("A01", 13, 2), ("A02", 13, 2), ("A06", 16, 1), ("A07", 19, 3),
         ("H01", 20, 7), ("H02", 27, 7)]

# By weekday from Monday on: who loads in the morning and in the afternoon.
OPERATORS = [(1, 3), (1, 3), (1, 3), (2, 4), (2, 3), (5, 4), (5, 4)]
# On these days others do.
RELIEF = {10: (3, 4), 14: (5, 3), 24: (3, 4), 28: (2, 3)}

# Stops as soon as the indicator takes the weight: within its tolerance below the target.
TAKES_TOLERANCE = 3
# How far the others miss, as a multiple of what is usual with an ingredient.
SPREAD_OF_OPERATOR = {1: 1.0, 2: 0.75, 4: 1.3, 5: 1.1}
# Usual miss and mean, as shares of the target. Long stems fall off a loader's bucket in lumps.
SPREAD = {1: (0.016, 0.001), 2: (0.018, 0.002), 3: (0.018, 0), 4: (0.032, 0.004),
          5: (0.032, 0.004), 6: (0.06, 0.015), 7: (0.065, 0.02), 8: (0.07, 0.015), 9: (0.02, 0),
          10: (0.022, 0), 11: (0.03, 0), 12: (0.03, 0)}
SLOW_TO_LOAD = (6, 7, 8)

LATE = {23: 55}  # day and minutes of both feedings: the mixer did not start

# What went wrong, by day, feeding and recipe.
FORGOTTEN = {(22, AFTERNOON, 2): 10}  # the ingredient that was not loaded
NOT_FED = {(16, MORNING, 6): ("d04", 360)}  # the pen and what it should have had more
LEFT_OVER = {(19, MORNING, HOSPITAL): ("H02", 45)}  # the same, in the hospital

LOST_DAY = 8  # the module came back without a record of it
NOT_CLEARED = 20  # the module was read but not cleared, and has this day's records the next day too
INTERRUPTED = 27  # the module was first read after this batch and so many of its feeds
INTERRUPTED_AFTER = (4, 4)


@dataclasses.dataclass
class Batch:
    recipe: int
    day: datetime.date
    operator: int
    loads: list = dataclasses.field(default_factory=list)  # ingredient, target, actual, time
    feeds: list = dataclasses.field(default_factory=list)  # pen, target, actual, time


class Month:
    """Goes through the days in order, since the calls of the pens develop."""

    def __init__(self):
        self.random = random.Random(SEED)
        self.calls = {pen[0]: 1.0 for pen in pens()}

    def day(self, day):
        """The batches of a day."""
        if day.day not in (1, LOST_DAY):
            self.change_calls()
        batches = []
        for feeding in (MORNING, AFTERNOON):
            now = START[feeding] + self.random.choice(range(-8, 9)) + LATE.get(day.day, 0)
            for recipe, called in self.called(day, feeding):
                for load in loads_of(called):
                    batch = Batch(recipe, day, operator_of(day, feeding))
                    now = self.load(batch, (day.day, feeding, recipe), load, now)
                    now = self.feed(batch, (day.day, feeding, recipe), load, now)
                    batches.append(batch)
                    now += self.random.choice([3, 4, 5])
        return batches

    def change_calls(self):
        """The calls follow the bunks: most days as the day before."""
        for pen, factor in self.calls.items():
            change = self.random.choice([-0.02, 0, 0, 0, 0.01, 0.02])
            self.calls[pen] = min(1.06, max(0.92, factor + change))

    def called(self, day, feeding):
        """The recipes of a feeding with the pens that get them and their targets."""
        for recipe in AFTERNOON_RECIPES if feeding == AFTERNOON else MORNING_RECIPES:
            called = [(pen, name, round(int(amount) * self.calls[pen] / 10) * 10)
                      for pen, name, _, amount, own in pens()
                      if recipe_of(name, own, day.day) == recipe]
            if called:
                yield recipe, called

    def load(self, batch, key, load, now):
        lines = recipe_lines(RECIPES[batch.recipe - 1])
        total = sum(line["batch_target"] for line in lines)
        wanted = sum(target for _, _, target in load)
        for line in lines:
            ingredient = line["ingredient"]
            step = 1 if line["hand_add"] else 5
            target = max(step, round(wanted * line["batch_target"] / total / step) * step)
            actual = self.weigh(batch, ingredient, target)
            if FORGOTTEN.get(key) == ingredient:
                actual = 0
            if batch.loads:
                slow = ingredient in SLOW_TO_LOAD or batch.operator == 5
                now += self.random.choice([2, 3, 4] if slow else [2, 2, 3])
            batch.loads.append((ingredient, target, actual, now))
        return now

    def weigh(self, batch, ingredient, target):
        hand_add = INGREDIENTS[ingredient - 1][4]
        if hand_add:
            miss = [0, 0.5, 0.5] if batch.operator == TAKES_TOLERANCE else [-0.5, 0, 0, 0, 0.5]
            # The medicated premix comes in weighed bags.
            return target if batch.recipe == HOSPITAL else target - self.random.choice(miss)
        if batch.operator == TAKES_TOLERANCE:
            if self.random.random() < 0.1:
                return target
            short = max(5, target * abs(self.random.gauss(0.014, 0.004)))
            return max(5, (target - short) // 5 * 5) if target > 100 else max(5, target - 5)
        spread, mean = SPREAD[ingredient]
        deviation = 3 + target * spread * SPREAD_OF_OPERATOR[batch.operator]
        return max(5, round(self.random.gauss(target * (1 + mean), deviation) / 5) * 5)

    def feed(self, batch, key, load, now):
        """What each pen got; the last pen takes what is left, less what stays in the mixer."""
        batched = sum(actual for _, _, actual, _ in batch.loads)
        called = sum(target for _, _, target in load)
        stays = self.random.gauss(0.001, 0.0035)
        stays = batched * min(CARRIED_OVER_LIMIT, max(-CARRIED_OVER_LIMIT, stays))
        if batch.recipe == HOSPITAL:
            stays = 0
        short_pen, short = NOT_FED.get(key) or LEFT_OVER.get(key) or ("", 0)
        left = batched
        now += self.random.choice(range(2, 9))
        for index, (pen, name, target) in enumerate(load):
            share = batched * target / called
            actual = round(self.random.gauss(share, 3 + target * 0.006) / 5) * 5
            if index == len(load) - 1:
                actual = -(-(left - stays) // 5) * 5  # rounded up, so that nothing else stays
            left -= actual
            if name == short_pen:
                actual -= short
            if index:
                now += self.random.choice([1, 1, 1, 1, 2] if len(load) > 3 else [2, 3, 4])
            batch.feeds.append((pen, target, actual, now))
        return now


def recipe_of(name, own, day):
    recipe = own
    for pen, since, other in MOVES:
        if pen == name and day >= since:
            recipe = other
    return recipe


def operator_of(day, feeding):
    return RELIEF.get(day.day, OPERATORS[day.weekday()])[feeding]


def loads_of(called):
    """Groups the pens of one recipe into loads that the mixer holds."""
    loads = []
    for pen in called:
        if not loads or sum(part[2] for part in loads[-1]) + pen[2] > LOAD_LIMIT:
            loads.append([])
        loads[-1].append(pen)
    return loads


def clock(minutes):
    return f"{minutes // 60:02}{minutes % 60:02}"


def weight(value):
    return f"{value:.1f}"


def padded(entries):
    return ",".join(list(entries) + ["0"] * (LIST_LENGTH - len(entries)))


def batch_record(number, batch):
    date = batch.day.strftime("%m%d%Y")
    lists = [padded([text(load[column]) for load in batch.loads])
             for column, text in ((0, str), (3, clock), (1, weight), (2, weight))]
    return f"B,{number},{batch.recipe},{date},{batch.operator}," + ";".join(lists)


def feed_record(number, batch, feed):
    pen, target, actual, time = feed
    date = batch.day.strftime("%m%d%Y")
    return (f"B,{number},{pen},{batch.operator},{clock(time)},{date},"
            f"{weight(target)},{weight(actual)}")


def write_file(path, batches):
    """A module's memory: the batches are numbered from 1."""
    numbered = list(enumerate(batches, 1))
    text = "{BAT/FED},L\r\n[BAT],"
    text += "\r\n".join(batch_record(number, batch) for number, batch in numbered)
    text += "\r\n\r\n[FED],"
    text += "\r\n".join(feed_record(number, batch, feed)
                        for number, batch in numbered for feed in batch.feeds)
    path.write_bytes((text + "\r\n\r\n").encode("ascii"))


def interrupted(batches):
    """What a module holds that is read in the middle of a feeding."""
    count, feeds = INTERRUPTED_AFTER
    last = batches[count - 1]
    return batches[:count - 1] + [dataclasses.replace(last, feeds=last.feeds[:feeds])]


def write_month(folder):
    for old in folder.glob("day*.qxt"):
        old.unlink()
    month = Month()
    held = []  # what the module was not cleared of
    for index in range(DAYS):
        day = FIRST_DAY + datetime.timedelta(days=index)
        batches = month.day(day)
        name = f"day{day.day:02}"
        if day.day == INTERRUPTED:
            write_file(folder / f"{name}a.qxt", interrupted(batches))
            name += "b"
        if day.day != LOST_DAY:
            write_file(folder / f"{name}.qxt", held + batches)
        held = batches if day.day == NOT_CLEARED else []
