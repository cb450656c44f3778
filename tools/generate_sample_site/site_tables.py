"""The master data of the sample site and its texts."""

import decimal
import struct

# ID, name, description, dry matter percent (0: no figure), hand-add
INGREDIENTS = [
    (1, "CORN", "Corn flaked", 82, False),
    (2, "HMCORN", "Corn high moist", 72, False),
    (3, "bARLEY", "Barley rolled", 88, False),
    (4, "bARSIL", "Barley silage", 38, False),
    (5, "CRNSIL", "Corn silage", 35, False),
    (6, "ALFHAY", "Alfalfa hay", 89, False),
    (7, "GRSHAY", "Grass hay", 88, False),
    (8, "STRAW", "Wheat straw", 91, False),
    (9, "dGRAIN", "Distillers grain", 90, False),
    (10, "SOYbML", "Soybean meal", 89, False),
    (11, "MOLASS", "Cane molasses", 74, False),
    (12, "FAT", "Feed fat", 99, False),
    (13, "MINRAL", "Mineral premix", 0, True),
    (14, "MEdPRM", "Medicated premix", 100, True),
]

# ID, name, description, type, head count, ration target, adjust index, lines: (ingredient, amount);
# an amount is a dry-matter weight, in a recipe of type P a percentage
RECIPES = [
    (1, "STARTR", "Starter ration", "P", 0, "10000", 20,
     [(6, "30.00"), (5, "20.00"), (1, "35.00"), (10, "8.00"), (11, "4.50"), (13, "2.50")]),
    (2, "STEP2", "Step-up 2", "P", 0, "11000", 20,
     [(6, "18.50"), (5, "20.00"), (1, "46.75"), (10, "7.75"), (11, "4.50"), (13, "2.50")]),
    (3, "STEP3", "Step-up 3", "%", 0, "11000", 20,
     [(1, 3600), (3, 1450), (4, 980), (6, 620), (9, 540), (11, 240), (13, 130)]),
    (4, "FINISH", "Finisher", "W", 0, "11000", 20,
     [(1, 5200), (2, 1300), (4, 640), (9, 760), (11, 260), (12, 180), (13, 150)]),
    (5, "FINHOT", "Finisher hot", "W", 0, "10500", 15,
     [(1, 6100), (2, 1500), (8, 310), (10, 380), (11, 240), (12, 260), (13, 160)]),
    (6, "GROWER", "Growing calves", "H", 240, "0", 20,
     [(5, 620), (7, 410), (3, 330), (10, 70), (13, 14)]),
    (7, "HEIFER", "Replace heifers", "H", 180, "0", 20,
     [(4, 560), (7, 690), (3, 240), (11, 45), (13, 12)]),
    (8, "HOSPIT", "Hospital pen", "P", 0, "2400", 20,
     [(7, "45.00"), (6, "22.50"), (3, "25.00"), (11, "5.50"), (13, "1.50"), (14, "0.50")]),
    (9, "dRYCOW", "Dry cows", "%", 0, "6000", 20,
     [(7, 2300), (8, 900), (4, 1100), (9, 160), (13, 60)]),
]

# recipe fed, alley, description, head per pen, pounds a head and feeding
PENS = [
    (1, "A", "Receiving", [82, 90, 76, 88, 94, 80], 7.5),
    (2, "A", "Step-up", [92, 85, 88, 96], 9.0),
    (3, "b", "Step-up", [98, 90, 104, 95], 10.0),
    (4, "b", "Finish", [110, 105, 98, 112, 102, 96], 10.5),
    (4, "C", "Finish", [100, 108, 94, 106], 10.5),
    (5, "C", "Finish hot", [103, 97, 110, 92, 99, 105], 10.0),
    (6, "d", "Growing", [120, 115, 124, 118], 8.5),
    (7, "d", "Heifers", [85, 90], 11.0),
    (8, "H", "Hospital", [18, 24], 9.0),
    (9, "H", "Dry cows", [60, 64], 14.0),
]


def single(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def whole(value, digits):
    """A computed value as a whole number: through its text of so many significant digits."""
    context = decimal.Context(prec=digits, rounding=decimal.ROUND_HALF_EVEN)
    text = context.create_decimal(decimal.Decimal(value))
    return int(text.to_integral_value(decimal.ROUND_HALF_EVEN))


def fixed(value, pattern):
    """A double with a fixed number of decimals, halves away from zero on its 15 digits."""
    text = decimal.Decimal(format(value, ".15g"))
    return str(text.quantize(decimal.Decimal(pattern), decimal.ROUND_HALF_UP))


def recipe_lines(recipe):
    """The lines of a recipe with their computed columns."""
    _, _, _, kind, head_count, ration_target, adjust, entries = recipe
    lines = []
    for sequence, (ingredient, amount) in enumerate(entries, 1):
        _, _, _, dry_matter, hand_add = INGREDIENTS[ingredient - 1]
        share = dry_matter or 100
        if kind == "P":
            target = 0
            as_fed = round(whole(single(float(amount)) * 10000, 15) / share)
        else:
            target = amount
            as_fed = round((1 / (share / 100)) * target)
        lines.append({"sequence": sequence, "ingredient": ingredient, "target": target,
                      "dry_matter_percent": dry_matter, "as_fed": as_fed, "hand_add": hand_add,
                      "percent": amount if kind == "P" else "0"})
    ration = sum(line["target"] for line in lines if line["dry_matter_percent"])
    as_fed_total = single(sum(line["as_fed"] for line in lines))
    factor = single((120 - adjust) / 100)
    wanted = head_count if kind == "H" else int(ration_target)
    adjusted = whole(single(factor * wanted), 7)
    for line in lines:
        if ration > 0 and line["dry_matter_percent"]:
            line["share"] = fixed(line["target"] / ration * 100, "0.001")
        else:
            line["share"] = "0.000"
        scale = adjusted / 100 if kind == "H" else adjusted / as_fed_total
        line["batch_target"] = whole(single(scale * line["as_fed"]), 7)
    return lines


def pens():
    """Every pen with its ID, name, description, feed amount and recipe."""
    numbers = {}
    result = []
    for recipe, alley, description, heads, pounds in PENS:
        for head in heads:
            numbers[alley] = numbers.get(alley, 0) + 1
            name = f"{alley}{numbers[alley]:02}"
            feed = round(head * pounds / 10) * 10
            text = f"{description} {numbers[alley]}"
            result.append((len(result) + 1, name, text, str(feed), recipe))
    return result


def write_table(path, header, rows):
    lines = ["\t".join(header)] + ["\t".join(str(cell) for cell in row) for row in rows]
    path.write_text("\n".join(lines) + "\n", encoding="utf-8", newline="\n")


def yes_no(value):
    return "yes" if value else "no"


def write_master_data(folder):
    write_table(folder / "ingredients.tsv", ["ID", "Name", "Description", "DryMatter%", "HandAdd"],
                [(*row[:4], yes_no(row[4])) for row in INGREDIENTS])
    write_table(folder / "recipes.tsv",
                ["ID", "Name", "Description", "BatchType", "HeadCount", "RationTarget",
                 "AdjBatTotIndex"], [row[:7] for row in RECIPES])
    write_table(folder / "pens.tsv", ["ID", "Name", "Description", "FeedAmount"],
                [row[:4] for row in pens()])
    write_table(folder / "recipe_lines.tsv",
                ["RecipeID", "Ingredient", "Target", "Ration%", "DryMatter%", "DryMatter",
                 "BatchTarget", "Sequence", "HandAdd", "Ingredient%"],
                [(recipe[0], line["ingredient"], line["target"], line["share"],
                  line["dry_matter_percent"], line["as_fed"], line["batch_target"],
                  line["sequence"], yes_no(line["hand_add"]), line["percent"])
                 for recipe in RECIPES for line in recipe_lines(recipe)])
